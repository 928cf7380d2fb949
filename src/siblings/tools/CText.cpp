#include "siblings/tools/CText.h"

#include "foundation/OQCharacters.h"

#include <algorithm>
#include <string_view>

namespace {

using View = std::u16string_view;

View ViewOf(const OQChar* text, int32_t length)
{
    size_t count = 0;
    while (text && (length < 0 || count < static_cast<size_t>(length)) && text[count])
        ++count;
    return { text, count };
}

int32_t Sign(int64_t value)
{
    return value < 0 ? -1 : value > 0 ? 1 : 0;
}

int32_t CompareUnits(View a, View b, bool ignoreCase)
{
    const size_t shorter = std::min(a.size(), b.size());
    for (size_t i = 0; i < shorter; ++i) {
        const OQChar x = ignoreCase ? OQToLower(a[i]) : a[i];
        const OQChar y = ignoreCase ? OQToLower(b[i]) : b[i];
        if (x != y)
            return x < y ? -1 : 1;
    }
    return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

bool SameUnit(OQChar a, OQChar b, bool ignoreCase)
{
    return a == b || (ignoreCase && OQToLower(a) == OQToLower(b));
}

// Cuts a run of digits off the front: what stands behind its zeros.
View TakeNumber(View& text, size_t& zeros)
{
    size_t end = 0;
    while (end < text.size() && OQIsDigit(text[end]))
        ++end;
    View digits = text.substr(0, end);
    text.remove_prefix(end);
    zeros = std::min(digits.find_first_not_of(u'0'), digits.size());
    digits.remove_prefix(zeros);
    return digits;
}

class Comparison
{
public:
    explicit Comparison(bool byValue)
        : m_byValue(byValue)
    {
    }

    int32_t Run(View a, View b, bool ignoreCase)
    {
        while (!a.empty() && !b.empty()) {
            const bool numbers = m_byValue && OQIsDigit(a.front()) && OQIsDigit(b.front());
            if (const int32_t order = numbers ? Numbers(a, b) : Units(a, b))
                return order;
        }
        if (!a.empty() || !b.empty())
            return a.empty() ? -1 : 1;
        return m_zeros != 0 || ignoreCase ? m_zeros : m_case;
    }

private:
    int32_t Numbers(View& a, View& b)
    {
        size_t zerosA = 0;
        size_t zerosB = 0;
        const View x = TakeNumber(a, zerosA);
        const View y = TakeNumber(b, zerosB);
        if (m_zeros == 0)
            m_zeros = Sign(static_cast<int64_t>(zerosB) - static_cast<int64_t>(zerosA));
        if (x.size() != y.size())
            return x.size() < y.size() ? -1 : 1;
        return Sign(x.compare(y));
    }

    int32_t Units(View& a, View& b)
    {
        const OQChar x = OQToLower(a.front());
        const OQChar y = OQToLower(b.front());
        if (x != y)
            return x < y ? -1 : 1;
        if (m_case == 0 && a.front() != b.front())
            m_case = a.front() == x ? -1 : b.front() == x ? 1 : a.front() < b.front() ? -1 : 1;
        a.remove_prefix(1);
        b.remove_prefix(1);
        return 0;
    }

    // What decides if nothing else does: the first difference of its kind.
    int32_t m_zeros = 0;
    int32_t m_case = 0;
    const bool m_byValue;
};

}

int32_t CText::Compare(
    const OQChar* a, const OQChar* b, int32_t mode, int32_t numbers, int32_t length) const
{
    const View first = ViewOf(a, length);
    const View second = ViewOf(b, length);
    const bool ignoreCase = mode & OQTextIgnoreCase;
    if (mode & OQTextOrdinal)
        return CompareUnits(first, second, ignoreCase);
    return Comparison(numbers != 0).Run(first, second, ignoreCase);
}

// Looks no further than to the hit, as a long text is searched from each hit on.
int32_t CText::Find(const OQChar* text, const OQChar* needle, int32_t flags) const
{
    if (!text || !needle || !*needle)
        return -1;
    const bool ignoreCase = flags & OQTextIgnoreCase;
    for (const OQChar* start = text; *start; ++start) {
        const OQChar* at = start;
        const OQChar* wanted = needle;
        while (*wanted && SameUnit(*at, *wanted, ignoreCase)) { // a zero in the text ends it, too
            ++at;
            ++wanted;
        }
        if (!*wanted)
            return static_cast<int32_t>(start - text);
        if (!*at) // the rest is shorter than the needle
            return -1;
    }
    return -1;
}
