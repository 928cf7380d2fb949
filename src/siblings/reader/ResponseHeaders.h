#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace pxvis::reader {

// The headers of one answer of a server, taken in line by line.
class ResponseHeaders
{
public:
    static constexpr size_t kMostBytes = 256 * 1024;

    // A line with its end; a status line begins a new answer. False if there are too many.
    bool Add(std::string_view line);

    bool IsComplete() const { return m_complete; }

    // The status line and all others, as they came, without the empty one at their end.
    const std::string& Text() const { return m_text; }

    // The header of that name, trimmed, several as one list with ", " between; empty if there is
    // none. Case makes no difference.
    std::string Value(std::string_view name) const;

private:
    std::string m_text;
    bool m_complete = false;
};

}
