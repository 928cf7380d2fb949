#include "foundation/OQStringReplace.h"

#include "foundation/IOQTools.h"
#include "foundation/OQSiblingModules.h"

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
    MultiSearch(const OQString& text, const OQStringReplacement& replacement)
        : m_text(text)
        , m_find(replacement.find)
        , m_search(replacement.search)
    {
        for (int i = 0; i < replacement.count; ++i)
            m_next.Add(PositionOf(m_find[i], 0));
    }

    // The earliest from `from` on; which is -1 if there is none.
    Hit Next(int from)
    {
        Hit hit { INT_MAX, -1 };
        for (int i = 0; i < m_next.GetCount(); ++i) {
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
        // The other module ends a text at its first zero, so one with a zero inside is not for it.
        const bool plain = !m_search || wanted.Find(u'\0') >= 0;
        const int position = plain ? m_text.Find(wanted, from) : PositionNoCase(wanted, from);
        return position < 0 ? INT_MAX : position;
    }

    // Looks through the pieces between the zeros, one by one.
    int PositionNoCase(const OQString& wanted, int from) const
    {
        while (from < m_text.GetLength()) {
            const int found
                = m_search->Find(m_text.GetText() + from, wanted.GetText(), CompareFlags);
            if (found >= 0 && found <= m_text.GetLength() - from - wanted.GetLength())
                return from + found;
            const int zero = m_text.Find(u'\0', from);
            if (zero < 0)
                break;
            from = zero + 1;
        }
        return -1;
    }

    static constexpr int32_t CompareFlags = OQTextIgnoreCase | OQTextOrdinal;

    const OQString& m_text;
    const OQStringArray& m_find;
    const IOQText* m_search;
    OQNumberArray<int> m_next;
};

}

int OQReplaceTexts(OQString& text, const OQStringReplacement& replacement)
{
    const OQStringArray& find = replacement.find;
    if (replacement.count > find.GetCount())
        return 0;
    for (int i = 0; i < replacement.count; ++i) {
        if (find[i].IsEmpty())
            return 0;
    }

    const std::u16string_view source = text.View();
    const auto replacementOf = [&](const Hit& hit) {
        if (replacement.keepHits) // in its own spelling
            return source.substr(size_t(hit.position), size_t(find[hit.which].GetLength()));
        return hit.which < replacement.replacements.GetCount()
            ? replacement.replacements[hit.which].View()
            : std::u16string_view();
    };

    OQArray<Hit> hits;
    int64_t length = text.GetLength();
    MultiSearch search(text, replacement);
    for (Hit hit = search.Next(0); hit.which >= 0;
         hit = search.Next(hit.position + find[hit.which].GetLength())) {
        hits.Add(hit);
        length += static_cast<int64_t>(replacementOf(hit).size()) + replacement.prefix.GetLength()
            + replacement.suffix.GetLength() - find[hit.which].GetLength();
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
        result.Append(source.substr(size_t(copied), size_t(hit.position - copied)));
        result += replacement.prefix;
        result.Append(replacementOf(hit));
        result += replacement.suffix;
        copied = hit.position + find[hit.which].GetLength();
    }
    result.Append(source.substr(size_t(copied)));
    text = std::move(result);
    return hits.GetCount();
}

int OQString::Replace(const OQStringArray& find, const OQStringArray& replacements, int count,
    bool caseSensitive, bool keepHits, const OQString& prefix, const OQString& suffix)
{
    return OQReplaceTexts(*this,
        { find, replacements, count, caseSensitive ? nullptr : OQToolsText(), keepHits, prefix,
            suffix });
}
