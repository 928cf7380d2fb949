#pragma once

#include "foundation/IOQStringManager.h"

#include <compare>
#include <string>
#include <string_view>

class OQStringArray;

// The one text type of the system: 16-bit units (UTF-16), reference counted, one pointer in size.
// Copies are O(1). Strings that share a text may be used by different threads; one OQString object
// isn't safe for a reader and a writer at once. Positions and lengths count units; those outside
// the text are clipped to it. Memory that can't be had throws std::bad_alloc.
class OQString
{
public:
    using OQByteMovable = void; // the block doesn't know where the string lies

    OQString();
    OQString(const OQChar* text); // null is empty
    OQString(const OQChar* text, int length); // takes zeros inside, too
    OQString(const OQString& other);
    OQString(OQString&& other) noexcept;
    ~OQString();
    OQString& operator=(const OQString& other);
    OQString& operator=(OQString&& other) noexcept;
    OQString& operator=(const OQChar* text);

    // Bytes that aren't UTF-8 become U+FFFD.
    static OQString FromUtf8(std::string_view text);
    // Half a surrogate pair becomes U+FFFD.
    std::string ToUtf8() const;
    // Each byte widened as it stands.
    static OQString FromNarrow(const char* text);

    const OQChar* GetText() const { return m_text; }

    int GetLength() const { return Header()->length; }

    bool IsEmpty() const { return GetLength() == 0; }

    std::u16string_view View() const { return { m_text, size_t(GetLength()) }; }

    // 0 <= index <= GetLength().
    OQChar operator[](int index) const { return m_text[index]; }

    void Clear();

    OQString& operator+=(const OQString& text) { return Append(text.View()); }

    OQString& operator+=(const OQChar* text) { return Append(ViewOf(text)); }

    OQString& operator+=(OQChar character) { return Append({ &character, 1 }); }

    OQString& Append(std::u16string_view text);

    // Exact, by the value of the units: below, equal to or above 0.
    int Compare(const OQString& other) const;
    // Unit by unit in lower case.
    int CompareNoCase(const OQString& other) const;

    // All finds give a position, or -1.
    int Find(const OQString& text, int from = 0) const;
    int Find(OQChar character, int from = 0) const;
    int FindNoCase(const OQString& text, int from = 0) const;
    int ReverseFind(OQChar character) const;
    bool StartsWith(const OQString& text) const;
    bool StartsWithNoCase(const OQString& text) const;
    bool EndsWith(const OQString& text) const;

    OQString Left(int count) const { return Mid(0, count < 0 ? 0 : count); }

    OQString Right(int count) const;
    OQString Mid(int from, int count = -1) const; // -1: to the end

    // White space of both ends, of the left or of the right one.
    void Trim();
    void TrimLeft();
    void TrimRight();

    void MakeLower();
    void MakeUpper();
    void Replace(OQChar find, OQChar replacement);
    // Every occurrence from the left, none overlapping; gives their number.
    int Replace(const OQString& find, const OQString& replacement);
    // Every occurrence of any of the first `count` texts of the list, from the left, none
    // overlapping; of two that begin at one place the earlier in the list. A hit becomes prefix,
    // its replacement (or with `keepHits` the hit itself), suffix. Nothing is done if one of the
    // texts is missing or empty; a missing replacement is empty. Without regard to case it is the
    // tools module that searches; where that is missing, case counts. Gives the number of hits.
    int Replace(const OQStringArray& find, const OQStringArray& replacements, int count,
        bool caseSensitive = true, bool keepHits = false, const OQString& prefix = OQString(),
        const OQString& suffix = OQString());
    void Insert(int position, const OQString& text);
    void Delete(int position, int count = 1);

    // The pieces between the separators, empty ones too; n separators make n + 1 pieces. What the
    // list held is dropped.
    void Split(OQChar separator, OQStringArray& parts) const;

    // The only way to write into a string: room for at least `minimumLength` characters and the
    // terminator, until ReleaseBuffer. With `exact` it grows by no more than that. Copies made in
    // between don't share the text.
    OQChar* GetBuffer(int minimumLength, bool exact = false, bool keepContents = true);
    // -1: the text ends at its first zero.
    void ReleaseBuffer(int length = -1);

    friend bool operator==(const OQString& a, const OQString& b) { return a.View() == b.View(); }

    friend bool operator==(const OQString& a, const OQChar* b) { return a.View() == ViewOf(b); }

    friend std::strong_ordering operator<=>(const OQString& a, const OQString& b)
    {
        return a.View() <=> b.View();
    }

    friend OQString operator+(const OQString& a, const OQString& b)
    {
        return Concatenate(a.View(), b.View());
    }

    friend OQString operator+(const OQString& a, const OQChar* b)
    {
        return Concatenate(a.View(), ViewOf(b));
    }

    friend OQString operator+(const OQChar* a, const OQString& b)
    {
        return Concatenate(ViewOf(a), b.View());
    }

    friend OQString operator+(const OQString& a, OQChar b)
    {
        return Concatenate(a.View(), { &b, 1 });
    }

    friend OQString operator+(OQChar a, const OQString& b)
    {
        return Concatenate({ &a, 1 }, b.View());
    }

private:
    static std::u16string_view ViewOf(const OQChar* text)
    {
        return text ? std::u16string_view(text) : std::u16string_view();
    }

    static OQString Concatenate(std::u16string_view a, std::u16string_view b);
    static OQChar* ShareOrCopy(OQChar* source, IOQStringManager& owner);
    static void Release(OQChar* text);

    OQStringHeader* Header() const { return OQStringHeader::Of(m_text); }

    IOQStringManager& Owner() const;
    void SetLengthInPlace(int length);

    OQChar* m_text;
};

static_assert(sizeof(OQString) == sizeof(void*));
