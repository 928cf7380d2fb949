#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace pxvis {

// The names of numbered files: a text with one "%0Nd" in it, N from 1 to 9, that stands for a
// number of at least N digits.
class NumberedName
{
public:
    // None for a name in which no "%" begins a number's place; also none, with a reason, for one in
    // which more than one does, or one of another form.
    static std::optional<NumberedName> Parse(const std::string& text, std::string& error);

    std::string At(uint64_t number) const;

private:
    std::string m_before;
    std::string m_behind;
    size_t m_digits = 1;
};

}
