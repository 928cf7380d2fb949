#include "siblings/reader/ResponseHeaders.h"

#include <algorithm>

namespace pxvis::reader {

namespace {

char ToLower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualNoCase(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
        [](char x, char y) { return ToLower(x) == ToLower(y); });
}

std::string_view Trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const size_t first = text.find_first_not_of(blanks);
    if (first == text.npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}

bool ResponseHeaders::Add(std::string_view line)
{
    if (line.starts_with("HTTP/"))
        m_text.clear();
    m_complete = Trimmed(line).empty();
    if (m_complete)
        return true;
    if (line.size() > kMostBytes - m_text.size())
        return false;
    m_text += line;
    return true;
}

std::string ResponseHeaders::Value(std::string_view name) const
{
    std::string value;
    for (std::string_view rest = m_text; !rest.empty();) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        const size_t colon = line.find(':');
        if (colon != line.npos && EqualNoCase(line.substr(0, colon), name))
            value.append(value.empty() ? "" : ", ").append(Trimmed(line.substr(colon + 1)));
    }
    return value;
}

}
