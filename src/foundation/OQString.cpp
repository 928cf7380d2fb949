#include "foundation/OQString.h"

#include "foundation/OQCharacters.h"
#include "foundation/OQStringArray.h"
#include "foundation/OQStringGlobals.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>
#include <new>

namespace {

// Growth is by powers of two up to this many characters and in steps of it beyond.
constexpr int LargeBuffer = 0x100000;

int GrownLength(int wanted)
{
    if (wanted > INT_MAX / 2)
        throw std::bad_alloc();
    if (wanted >= LargeBuffer)
        return (wanted / LargeBuffer + 1) * LargeBuffer;
    int length = 1;
    while (length <= wanted)
        length *= 2;
    return length;
}

int CheckedLength(size_t length)
{
    if (length > INT_MAX / 2)
        throw std::bad_alloc();
    return static_cast<int>(length);
}

void CopyCharacters(OQChar* target, const OQChar* source, int count)
{
    if (count > 0)
        std::memmove(target, source, sizeof(OQChar) * size_t(count));
}

bool EqualNoCase(const OQChar* a, const OQChar* b, int count)
{
    for (int i = 0; i < count; ++i) {
        if (a[i] != b[i] && OQToLower(a[i]) != OQToLower(b[i]))
            return false;
    }
    return true;
}

}

OQString::OQString()
    : m_text(OQStringGlobals::Get().GetEmpty())
{
}

OQString::OQString(const OQChar* text)
    : m_text(OQStringGlobals::Get().Create(text, -1, -1, false, false, true))
{
}

OQString::OQString(const OQChar* text, int length)
    : m_text(OQStringGlobals::Get().Create(text, std::max(length, 0), -1, false, true, true))
{
}

OQString::OQString(const OQString& other)
    : m_text(ShareOrCopy(other.m_text, OQStringGlobals::Get()))
{
}

OQString::OQString(OQString&& other) noexcept
    : m_text(other.m_text)
{
    other.m_text = OQStringGlobals::Get().GetEmpty();
}

OQString::~OQString()
{
    Release(m_text);
}

OQString& OQString::operator=(const OQString& other)
{
    if (m_text == other.m_text)
        return *this;
    if (other.IsEmpty()) {
        Clear();
        return *this;
    }
    OQChar* text = ShareOrCopy(other.m_text, Owner());
    Release(m_text);
    m_text = text;
    return *this;
}

OQString& OQString::operator=(OQString&& other) noexcept
{
    std::swap(m_text, other.m_text);
    return *this;
}

OQString& OQString::operator=(const OQChar* text)
{
    OQChar* created = Owner().Create(text, -1, -1, false, false, true);
    Release(m_text);
    m_text = created;
    return *this;
}

IOQStringManager& OQString::Owner() const
{
    IOQStringManager* owner = Header()->owner;
    return owner ? *owner : OQStringGlobals::Get();
}

OQChar* OQString::ShareOrCopy(OQChar* source, IOQStringManager& owner)
{
    OQStringHeader* header = OQStringHeader::Of(source);
    const int32_t references = header->references.load(std::memory_order_relaxed);
    if (references == OQStringHeader::StaticMarker && (!header->owner || header->owner == &owner))
        return source;
    if (header->length == 0)
        return owner.GetEmpty();
    if (references == OQStringHeader::Locked || header->owner != &owner)
        return owner.Create(source, header->length, -1, false, true, true);
    header->references.fetch_add(1, std::memory_order_relaxed);
    return source;
}

void OQString::Release(OQChar* text)
{
    OQStringHeader* header = OQStringHeader::Of(text);
    const int32_t references = header->references.load(std::memory_order_acquire);
    if (references == OQStringHeader::StaticMarker)
        return;
    if (references == OQStringHeader::Locked
        || header->references.fetch_sub(1, std::memory_order_acq_rel) <= 1)
        header->owner->Free(header);
}

void OQString::SetLengthInPlace(int length)
{
    Header()->length = length;
    m_text[length] = 0;
}

void OQString::Clear()
{
    if (Header()->references.load(std::memory_order_acquire) == 1) {
        SetLengthInPlace(0); // keeps the room for the next text
        return;
    }
    OQChar* empty = Owner().GetEmpty();
    Release(m_text);
    m_text = empty;
}

OQChar* OQString::GetBuffer(int minimumLength, bool exact, bool keepContents)
{
    OQStringHeader* header = Header();
    const int length = header->length;
    minimumLength = std::max(minimumLength, keepContents ? length : 0);
    const bool shared = header->references.load(std::memory_order_acquire) >= 2;
    if (shared || header->capacity <= minimumLength) {
        const int wanted = shared || exact ? minimumLength : GrownLength(minimumLength);
        OQStringHeader* block = Owner().Allocate(wanted, true);
        block->length = keepContents ? length : 0;
        CopyCharacters(block->Text(), m_text, block->length);
        block->Text()[block->length] = 0;
        Release(m_text);
        m_text = block->Text();
    }
    Header()->references.store(OQStringHeader::Locked, std::memory_order_relaxed);
    return m_text;
}

void OQString::ReleaseBuffer(int length)
{
    OQStringHeader* header = Header();
    if (header->references.load(std::memory_order_relaxed) != OQStringHeader::Locked)
        return;
    if (length < 0) {
        length = 0;
        while (length < header->capacity - 1 && m_text[length])
            ++length;
    }
    SetLengthInPlace(std::min(length, header->capacity - 1));
    header->references.store(1, std::memory_order_release);
}

OQString& OQString::Append(std::u16string_view text)
{
    if (text.empty())
        return *this;
    const int length = GetLength();
    const int added = CheckedLength(text.size());
    const int total = CheckedLength(size_t(length) + text.size());
    // The text may be a part of this string, whose block the growth gives back.
    const bool inside = !std::less<>()(text.data(), m_text)
        && std::less<>()(text.data(), m_text + Header()->capacity);
    const ptrdiff_t offset = inside ? text.data() - m_text : 0;
    OQChar* buffer = GetBuffer(total);
    CopyCharacters(buffer + length, inside ? buffer + offset : text.data(), added);
    ReleaseBuffer(total);
    return *this;
}

OQString OQString::Concatenate(std::u16string_view a, std::u16string_view b)
{
    OQString result;
    const int total = CheckedLength(a.size() + b.size());
    if (total == 0)
        return result;
    OQChar* buffer = result.GetBuffer(total, true);
    CopyCharacters(buffer, a.data(), static_cast<int>(a.size()));
    CopyCharacters(buffer + a.size(), b.data(), static_cast<int>(b.size()));
    result.ReleaseBuffer(total);
    return result;
}

int OQString::Compare(const OQString& other) const
{
    return View().compare(other.View());
}

int OQString::CompareNoCase(const OQString& other) const
{
    const int common = std::min(GetLength(), other.GetLength());
    for (int i = 0; i < common; ++i) {
        const int difference = OQToLower(m_text[i]) - OQToLower(other.m_text[i]);
        if (difference != 0)
            return difference;
    }
    return GetLength() - other.GetLength();
}

int OQString::Find(const OQString& text, int from) const
{
    const size_t position = View().find(text.View(), size_t(std::max(from, 0)));
    return position == std::u16string_view::npos ? -1 : static_cast<int>(position);
}

int OQString::Find(OQChar character, int from) const
{
    const size_t position = View().find(character, size_t(std::max(from, 0)));
    return position == std::u16string_view::npos ? -1 : static_cast<int>(position);
}

int OQString::FindNoCase(const OQString& text, int from) const
{
    const int last = GetLength() - text.GetLength();
    for (int i = std::max(from, 0); i <= last; ++i) {
        if (EqualNoCase(m_text + i, text.m_text, text.GetLength()))
            return i;
    }
    return -1;
}

int OQString::ReverseFind(OQChar character) const
{
    const size_t position = View().rfind(character);
    return position == std::u16string_view::npos ? -1 : static_cast<int>(position);
}

bool OQString::StartsWith(const OQString& text) const
{
    return View().starts_with(text.View());
}

bool OQString::StartsWithNoCase(const OQString& text) const
{
    return GetLength() >= text.GetLength() && EqualNoCase(m_text, text.m_text, text.GetLength());
}

bool OQString::EndsWith(const OQString& text) const
{
    return View().ends_with(text.View());
}

OQString OQString::Mid(int from, int count) const
{
    const int length = GetLength();
    from = std::clamp(from, 0, length);
    count = count < 0 ? length - from : std::min(count, length - from);
    if (from == 0 && count == length)
        return *this;
    return OQString(m_text + from, count);
}

OQString OQString::Right(int count) const
{
    count = std::clamp(count, 0, GetLength());
    return Mid(GetLength() - count, count);
}

void OQString::Trim()
{
    TrimRight();
    TrimLeft();
}

void OQString::TrimLeft()
{
    int blanks = 0;
    while (blanks < GetLength() && OQIsSpace(m_text[blanks]))
        ++blanks;
    Delete(0, blanks);
}

void OQString::TrimRight()
{
    int length = GetLength();
    while (length > 0 && OQIsSpace(m_text[length - 1]))
        --length;
    Delete(length, GetLength() - length);
}

void OQString::MakeLower()
{
    const int length = GetLength();
    if (length == 0)
        return;
    OQChar* buffer = GetBuffer(length);
    std::transform(buffer, buffer + length, buffer, OQToLower);
    ReleaseBuffer(length);
}

void OQString::MakeUpper()
{
    const int length = GetLength();
    if (length == 0)
        return;
    OQChar* buffer = GetBuffer(length);
    std::transform(buffer, buffer + length, buffer, OQToUpper);
    ReleaseBuffer(length);
}

void OQString::Replace(OQChar find, OQChar replacement)
{
    const int length = GetLength();
    if (Find(find) < 0)
        return;
    OQChar* buffer = GetBuffer(length);
    std::replace(buffer, buffer + length, find, replacement);
    ReleaseBuffer(length);
}

int OQString::Replace(const OQString& find, const OQString& replacement)
{
    int hits = 0;
    if (find.IsEmpty())
        return hits;
    for (int at = Find(find); at >= 0; at = Find(find, at + find.GetLength()))
        ++hits;
    if (hits == 0)
        return hits;
    const int64_t total
        = GetLength() + int64_t { hits } * (int64_t { replacement.GetLength() } - find.GetLength());
    OQString result;
    OQChar* buffer = result.GetBuffer(CheckedLength(static_cast<size_t>(total)), true);
    int from = 0;
    for (int i = 0; i < hits; ++i) {
        const int at = Find(find, from);
        CopyCharacters(buffer, m_text + from, at - from);
        CopyCharacters(buffer + (at - from), replacement.m_text, replacement.GetLength());
        buffer += at - from + replacement.GetLength();
        from = at + find.GetLength();
    }
    CopyCharacters(buffer, m_text + from, GetLength() - from);
    result.ReleaseBuffer(static_cast<int>(total));
    *this = std::move(result);
    return hits;
}

void OQString::Insert(int position, const OQString& text)
{
    if (text.IsEmpty())
        return;
    const OQString inserted(text); // may be this very string
    const int length = GetLength();
    const int added = inserted.GetLength();
    const int total = CheckedLength(size_t(length) + size_t(added));
    position = std::clamp(position, 0, length);
    OQChar* buffer = GetBuffer(total);
    CopyCharacters(buffer + position + added, buffer + position, length - position);
    CopyCharacters(buffer + position, inserted.m_text, added);
    ReleaseBuffer(total);
}

void OQString::Delete(int position, int count)
{
    const int length = GetLength();
    position = std::clamp(position, 0, length);
    count = std::clamp(count, 0, length - position);
    if (count == 0)
        return;
    OQChar* buffer = GetBuffer(length);
    CopyCharacters(buffer + position, buffer + position + count, length - position - count);
    ReleaseBuffer(length - count);
}

void OQString::Split(OQChar separator, OQStringArray& parts) const
{
    const OQString text(*this); // the list may hold this very string
    parts.Clear();
    // A list from a stranger may have millions of pieces, and growing over and over costs more than
    // all else then.
    parts.Reserve(
        1 + static_cast<int>(std::count(text.View().begin(), text.View().end(), separator)));
    int from = 0;
    for (int at = text.Find(separator); at >= 0; at = text.Find(separator, from)) {
        parts.Add(OQString(text.m_text + from, at - from));
        from = at + 1;
    }
    parts.Add(text.Mid(from));
}
