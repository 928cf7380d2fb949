#include "foundation/OQTextEncoding.h"

#include "foundation/OQStringGlobals.h"

#include <climits>
#include <new>

namespace {

constexpr OQChar ReplacementCharacter = 0xFFFD;

// What windows-1252 has in 0x80 to 0x9F; the five bytes that it leaves open stand for themselves.
constexpr OQChar codePage1252[32] = { 0x20AC, 0x81, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D, 0x017D, 0x8F, 0x90, 0x2018, 0x2019, 0x201C,
    0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D, 0x017E, 0x0178 };

uint8_t ByteAt(std::string_view bytes, size_t index)
{
    return static_cast<uint8_t>(bytes[index]);
}

struct Utf8Sequence
{
    uint32_t character;
    size_t length; // of the well-formed sequence, or of the longest start of one
    bool valid;
};

// The sequence at `index`, by the table of well-formed sequences of the Unicode standard: no
// overlong forms, no surrogates, nothing above U+10FFFF.
Utf8Sequence ReadUtf8(std::string_view bytes, size_t index)
{
    const uint8_t lead = ByteAt(bytes, index);
    if (lead < 0x80)
        return { lead, 1, true };
    if (lead < 0xC2 || lead > 0xF4)
        return { 0, 1, false };
    const size_t following = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    uint32_t character = lead & (0x3Fu >> following);
    uint8_t lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    uint8_t highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    for (size_t i = 1; i <= following; ++i) {
        if (index + i >= bytes.size())
            return { 0, i, false };
        const uint8_t byte = ByteAt(bytes, index + i);
        if (byte < lowest || byte > highest)
            return { 0, i, false };
        character = character << 6 | (byte & 0x3Fu);
        lowest = 0x80;
        highest = 0xBF;
    }
    return { character, following + 1, true };
}

int Utf16Length(uint32_t character)
{
    return character < 0x10000 ? 1 : 2;
}

int PutUtf16(OQChar* target, uint32_t character)
{
    if (character < 0x10000) {
        target[0] = static_cast<OQChar>(character);
        return 1;
    }
    target[0] = static_cast<OQChar>(0xD7C0 + (character >> 10));
    target[1] = static_cast<OQChar>(0xDC00 + (character & 0x3FF));
    return 2;
}

bool IsHighSurrogate(OQChar unit)
{
    return (unit & 0xFC00) == 0xD800;
}

bool IsLowSurrogate(OQChar unit)
{
    return (unit & 0xFC00) == 0xDC00;
}

// Units of `size` bytes, little endian unless swapped.
uint32_t UnitAt(std::string_view bytes, size_t index, size_t size, bool swapped)
{
    uint32_t unit = 0;
    for (size_t i = 0; i < size; ++i) {
        const size_t shift = 8 * (swapped ? size - 1 - i : i);
        unit |= static_cast<uint32_t>(ByteAt(bytes, index + i)) << shift;
    }
    return unit;
}

OQString WideBytesToText(std::string_view bytes, size_t size)
{
    const size_t unitCount = bytes.size() / size;
    size_t first = 0;
    bool swapped = false;
    if (unitCount > 0) {
        const uint32_t mark = UnitAt(bytes, 0, size, false);
        swapped = mark == (size == 2 ? 0xFFFEu : 0xFFFE0000u);
        first = swapped || mark == 0xFEFF ? 1 : 0;
    }
    OQString text;
    const int length = static_cast<int>(unitCount - first);
    OQChar* buffer = text.GetBuffer(length, true);
    for (int i = 0; i < length; ++i) {
        const uint32_t unit = UnitAt(bytes, (first + size_t(i)) * size, size, swapped);
        buffer[i] = unit < 0x10000 ? static_cast<OQChar>(unit) : u'?';
    }
    text.ReleaseBuffer(length);
    return text;
}

OQString CodePageToText(std::string_view bytes)
{
    OQString text;
    const int length = static_cast<int>(bytes.size());
    OQChar* buffer = text.GetBuffer(length, true);
    for (int i = 0; i < length; ++i) {
        const uint8_t byte = ByteAt(bytes, size_t(i));
        buffer[i] = byte >= 0x80 && byte < 0xA0 ? codePage1252[byte - 0x80] : byte;
    }
    text.ReleaseBuffer(length);
    return text;
}

}

OQTextEncoding OQDetectEncoding(std::string_view bytes, int& markLength)
{
    markLength = 0;
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF"))
        return OQTextEncoding::Utf16;
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        markLength = 3;
        return OQTextEncoding::Utf8;
    }
    while (!bytes.empty() && bytes.back() == 0)
        bytes.remove_suffix(1);
    bool sequences = false;
    bool strayBytes = false;
    for (size_t i = 0; i < bytes.size();) {
        if (bytes[i] == 0) {
            // The end isn't a zero, so bytes[i + 1] exists, and behind a zero one more.
            const bool wide = bytes[i + 1] == 0 && bytes[i + 2] != 0;
            return wide ? OQTextEncoding::Utf32 : OQTextEncoding::Utf16;
        }
        const Utf8Sequence sequence = ReadUtf8(bytes, i);
        sequences |= sequence.valid && sequence.length > 1;
        strayBytes |= !sequence.valid;
        i += sequence.length;
    }
    return sequences && !strayBytes ? OQTextEncoding::Utf8 : OQTextEncoding::CodePage;
}

OQString OQBytesToText(std::string_view bytes)
{
    int markLength = 0;
    const OQTextEncoding encoding = OQDetectEncoding(bytes, markLength);
    return OQBytesToText(bytes.substr(size_t(markLength)), encoding);
}

OQString OQBytesToText(std::string_view bytes, OQTextEncoding encoding)
{
    if (bytes.size() > INT_MAX / 2)
        throw std::bad_alloc();
    switch (encoding) {
    case OQTextEncoding::Utf8:
        return OQString::FromUtf8(bytes);
    case OQTextEncoding::Utf16:
        return WideBytesToText(bytes, 2);
    case OQTextEncoding::Utf32:
        return WideBytesToText(bytes, 4);
    case OQTextEncoding::CodePage:
        break;
    }
    return CodePageToText(bytes);
}

OQString OQString::FromUtf8(std::string_view text)
{
    size_t length = 0;
    for (size_t i = 0; i < text.size();) {
        const Utf8Sequence sequence = ReadUtf8(text, i);
        length += size_t(sequence.valid ? Utf16Length(sequence.character) : 1);
        i += sequence.length;
    }
    if (length > INT_MAX / 2)
        throw std::bad_alloc();
    OQString result;
    if (length == 0)
        return result;
    OQChar* buffer = result.GetBuffer(static_cast<int>(length), true);
    for (size_t i = 0; i < text.size();) {
        const Utf8Sequence sequence = ReadUtf8(text, i);
        buffer += PutUtf16(buffer, sequence.valid ? sequence.character : ReplacementCharacter);
        i += sequence.length;
    }
    result.ReleaseBuffer(static_cast<int>(length));
    return result;
}

std::string OQString::ToUtf8() const
{
    std::string result;
    const int length = GetLength();
    result.reserve(size_t(length));
    for (int i = 0; i < length; ++i) {
        uint32_t character = m_text[i];
        if (IsHighSurrogate(m_text[i]) && IsLowSurrogate(m_text[i + 1])) {
            character = ((character - 0xD7C0u) << 10) + (m_text[i + 1] & 0x3FFu);
            ++i;
        } else if (IsHighSurrogate(m_text[i]) || IsLowSurrogate(m_text[i])) {
            character = ReplacementCharacter;
        }
        if (character < 0x80) {
            result += static_cast<char>(character);
            continue;
        }
        const int following = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
        result += static_cast<char>(
            (0xF00u >> (following + 1) & 0xF0u) | (character >> 6 * following));
        for (int shift = 6 * (following - 1); shift >= 0; shift -= 6)
            result += static_cast<char>(0x80u | (character >> shift & 0x3Fu));
    }
    return result;
}

OQString OQString::FromNarrow(const char* text)
{
    OQString result;
    result.m_text = OQStringGlobals::Get().CreateFromNarrow(text);
    return result;
}

void OQAppendCharacter(OQString& text, uint32_t character)
{
    OQChar units[2];
    text.Append({ units, static_cast<size_t>(PutUtf16(units, character)) });
}
