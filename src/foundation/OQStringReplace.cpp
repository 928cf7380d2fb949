#include "foundation/OQString.h"
#include "foundation/OQStringArray.h"

#include <climits>
#include <new>

namespace {

struct Hit
{
    int position;
    int which; // of the texts that are looked for
};

// For each text the next place where it begins; only those that lie behind are looked for again, so
// that a text that isn't there is looked for once.
class MultiSearch
{
public:
    MultiSearch(const OQString& text, const OQStringArray& find)
        : m_text(text)
        , m_find(find)
    {
        for (const OQString& wanted : find)
            m_next.Add(PositionOf(wanted, 0));
    }

    // The earliest from `from` on; which is -1 if there is none.
    Hit Next(int from)
    {
        Hit hit { INT_MAX, -1 };
        for (int i = 0; i < m_find.GetCount(); ++i) {
            if (m_next[i] < from)
                m_next[i] = PositionOf(m_find[i], from);
            if (m_next[i] < hit.position)
                hit = { m_next[i], i };
        }
        return hit;
    }

private:
    int PositionOf(const OQString& wanted, int from) const
    {
        const int position = m_text.Find(wanted, from);
        return position < 0 ? INT_MAX : position;
    }

    const OQString& m_text;
    const OQStringArray& m_find;
    OQNumberArray<int> m_next;
};

}

int OQString::Replace(const OQStringArray& find, const OQStringArray& replacements, bool keepHits,
    const OQString& prefix, const OQString& suffix)
{
    for (const OQString& wanted : find) {
        if (wanted.IsEmpty())
            return 0;
    }
    const OQString none;
    const auto replacementOf = [&](const Hit& hit) -> const OQString& {
        if (keepHits)
            return find[hit.which];
        return hit.which < replacements.GetCount() ? replacements[hit.which] : none;
    };

    OQArray<Hit> hits;
    int64_t length = GetLength();
    MultiSearch search(*this, find);
    for (Hit hit = search.Next(0); hit.which >= 0;
         hit = search.Next(hit.position + find[hit.which].GetLength())) {
        hits.Add(hit);
        length += int64_t { prefix.GetLength() } + replacementOf(hit).GetLength()
            + suffix.GetLength() - find[hit.which].GetLength();
        if (length > INT_MAX / 2)
            throw std::bad_alloc();
    }
    if (hits.IsEmpty())
        return 0;

    OQString result;
    result.GetBuffer(static_cast<int>(length), true);
    result.ReleaseBuffer(0);
    int copied = 0;
    for (const Hit& hit : hits) {
        result.Append(View().substr(size_t(copied), size_t(hit.position - copied)));
        result += prefix;
        result += replacementOf(hit);
        result += suffix;
        copied = hit.position + find[hit.which].GetLength();
    }
    result.Append(View().substr(size_t(copied)));
    *this = std::move(result);
    return hits.GetCount();
}
