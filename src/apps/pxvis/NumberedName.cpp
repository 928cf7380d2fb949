#include "apps/pxvis/NumberedName.h"

namespace pxvis {

std::optional<NumberedName> NumberedName::Parse(const std::string& text, std::string& error)
{
    std::optional<NumberedName> name;
    for (size_t at = text.find('%'); at != std::string::npos; at = text.find('%', at + 1)) {
        size_t end = text.find_first_not_of("0123456789", at + 1);
        end = end == std::string::npos ? text.size() : end;
        const char last = end < text.size() ? text[end] : ' ';
        // "50% b.png" and "50%.png" are names like any other.
        if (last != '%' && (last < 'a' || last > 'z'))
            continue;
        const bool isPlace
            = last == 'd' && end == at + 3 && text[at + 1] == '0' && text[at + 2] != '0';
        if (!isPlace || name) {
            error = text
                + ": the number's place is written as one \"%05d\", or with another count of digits"
                  " from 1 to 9, and nothing else may follow a \"%\"";
            return {};
        }
        name.emplace();
        name->m_before = text.substr(0, at);
        name->m_behind = text.substr(end + 1);
        name->m_digits = static_cast<size_t>(text[at + 2] - '0');
    }
    return name;
}

std::string NumberedName::At(uint64_t number) const
{
    const std::string digits = std::to_string(number);
    const size_t zeros = m_digits > digits.size() ? m_digits - digits.size() : 0;
    return m_before + std::string(zeros, '0') + digits + m_behind;
}

}
