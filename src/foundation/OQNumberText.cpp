#include "foundation/OQNumberText.h"

#include "foundation/OQArray.h"
#include "foundation/OQCharacters.h"
#include "kernels/Maths.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>

namespace {

// The greatest double has 309 digits before the point.
constexpr size_t DecimalTextSize = 400;
constexpr int MaximumFixedDecimals = 64;
constexpr int MaximumShortestDecimals = 16;

const OQChar* SkipSpace(const OQChar* text)
{
    while (OQIsSpace(*text))
        ++text;
    return text;
}

bool TakeSign(const OQChar*& text)
{
    const bool negative = *text == u'-';
    if (negative || *text == u'+')
        ++text;
    return negative;
}

template <class T>
T ReadClamped(const OQChar* text, T limit)
{
    if (!text)
        return 0;
    text = SkipSpace(text);
    const bool negative = TakeSign(text);
    T value = 0;
    for (; OQIsDigit(*text); ++text) {
        const T digit = static_cast<T>(*text - u'0');
        if (value > (limit - digit) / 10) {
            value = limit;
            break;
        }
        value = static_cast<T>(value * 10 + digit);
    }
    return negative ? -value : value;
}

// One number without its exponent.
struct Mantissa
{
    double value = 0;
    bool exponentFollows = false;
};

double PowerOfTen(double exponent)
{
    return pxvis::maths::Pow(10.0, exponent);
}

uint64_t ReadDigits(const OQChar*& text, const OQChar* end, int& count)
{
    uint64_t value = 0;
    for (; text != end && OQIsDigit(*text); ++text, ++count)
        value = value * 10 + static_cast<uint64_t>(*text - u'0');
    return value;
}

Mantissa ReadMantissa(const OQChar*& text, const OQChar* end)
{
    const bool negative = text != end && *text == u'-';
    if (negative || (text != end && *text == u'+'))
        ++text;
    int digits = 0;
    Mantissa mantissa;
    mantissa.value = static_cast<double>(static_cast<int64_t>(ReadDigits(text, end, digits)));
    if (text != end && *text == u'.') {
        ++text;
        int decimals = 0;
        const auto fraction = static_cast<int64_t>(ReadDigits(text, end, decimals));
        if (decimals > 0)
            mantissa.value += static_cast<double>(fraction) / PowerOfTen(decimals);
    }
    if (negative)
        mantissa.value = -mantissa.value;
    mantissa.exponentFollows = text != end && *text == u'e';
    if (mantissa.exponentFollows)
        ++text;
    return mantissa;
}

OQString FromAscii(const char* begin, const char* end)
{
    OQString text;
    const int length = static_cast<int>(end - begin);
    OQChar* buffer = text.GetBuffer(length, true);
    std::copy(begin, end, buffer);
    text.ReleaseBuffer(length);
    return text;
}

template <class T>
OQString ShortestText(T value)
{
    if (std::isnan(value))
        return u"nan";
    if (value == 0) // no sign
        return u"0";
    // The least double takes 1074 decimals.
    char buffer[1200];
    const auto shortest = std::to_chars(buffer, std::end(buffer), value, std::chars_format::fixed);
    const char* end = shortest.ptr;
    const char* point = std::find<const char*>(buffer, end, '.');
    if (end - point <= MaximumShortestDecimals + 1)
        return FromAscii(buffer, end);
    end = std::to_chars(
        buffer, std::end(buffer), value, std::chars_format::fixed, MaximumShortestDecimals)
              .ptr;
    while (end[-1] == '0')
        --end;
    if (end[-1] == '.')
        --end;
    const bool nothingLeft = end - buffer == 2 && buffer[0] == '-' && buffer[1] == '0';
    return FromAscii(buffer + nothingLeft, end);
}

const char* OrdinalSuffix(uint64_t magnitude)
{
    const uint64_t tens = magnitude / 10 % 10;
    switch (tens == 1 ? 0 : magnitude % 10) {
    case 1:
        return "st";
    case 2:
        return "nd";
    case 3:
        return "rd";
    default:
        return "th";
    }
}

// The digits of a magnitude, with what belongs in front of them and behind.
void AppendDigits(OQString& text, uint64_t magnitude, const OQChar* sign, int minimumDigits,
    int base, uint32_t flags)
{
    constexpr int maximumDigits = 256;
    if (base < 2 || base > 36)
        base = 10;
    minimumDigits = std::clamp(minimumDigits, 1, maximumDigits);
    const bool padBlanks = flags & OQNumberPadBlanks;

    // Built backwards: 64 binary digits at most, the padding, and the separators between them.
    OQChar buffer[maximumDigits * 2 + 8];
    OQChar* const end = std::end(buffer);
    OQChar* start = end;
    int digits = 0;
    uint64_t rest = magnitude;
    while (rest != 0 || digits == 0 || (!padBlanks && digits < minimumDigits)) {
        if ((flags & OQNumberThousands) && digits > 0 && digits % 3 == 0)
            *--start = u',';
        const auto digit = static_cast<int>(rest % static_cast<uint64_t>(base));
        const char letter = flags & OQNumberLowerCase ? 'a' : 'A';
        *--start = static_cast<OQChar>(digit < 10 ? '0' + digit : letter + digit - 10);
        rest /= static_cast<uint64_t>(base);
        ++digits;
    }
    if ((flags & OQNumberHexPrefix) && base == 16) {
        *--start = u'x';
        *--start = u'0';
    }
    if (*sign)
        *--start = *sign;
    for (; digits < minimumDigits; ++digits)
        *--start = u' ';
    text.Append({ start, size_t(end - start) });
    if (flags & OQNumberOrdinal)
        text += OQString::FromNarrow(OrdinalSuffix(magnitude));
}

}

int32_t OQTextToInt(const OQChar* text)
{
    return ReadClamped<int32_t>(text, INT32_MAX);
}

int64_t OQTextToInt64(const OQChar* text)
{
    return ReadClamped<int64_t>(text, INT64_MAX);
}

uint32_t OQHexTextToUInt(const OQChar* text, int* consumed)
{
    if (consumed)
        *consumed = 0;
    if (!text)
        return 0;
    const OQChar* digits = SkipSpace(text);
    const bool negative = TakeSign(digits);
    const OQChar* end = digits;
    uint32_t value = 0;
    for (; OQHexDigitValue(*end) >= 0; ++end)
        value = value << 4 | static_cast<uint32_t>(OQHexDigitValue(*end));
    if (consumed && end != digits)
        *consumed = static_cast<int>(end - text);
    return negative ? 0 - value : value;
}

uint32_t OQReferenceToUInt(std::u16string_view text)
{
    constexpr size_t maximumLength = 7; // fits
    if (text.size() > maximumLength)
        return 0;
    const bool hexadecimal = text.starts_with(u'x');
    uint32_t value = 0;
    for (const OQChar digit : text.substr(hexadecimal)) {
        if (hexadecimal ? OQHexDigitValue(digit) < 0 : !OQIsDigit(digit))
            return 0;
        value = value * (hexadecimal ? 16 : 10) + static_cast<uint32_t>(OQHexDigitValue(digit));
    }
    return value;
}

double OQTextToDouble(const OQChar* text, int length, int* consumed)
{
    const OQChar* const end = text ? text + std::max(length, 0) : text;
    const OQChar* position = text;
    Mantissa last = ReadMantissa(position, end);
    double value = last.value;
    if (last.exponentFollows) {
        // Exponents may have exponents of their own, as many as the text is long; they count from
        // the innermost outward.
        OQNumberArray<double> outer;
        while (last.exponentFollows) {
            outer.Add(last.value);
            last = ReadMantissa(position, end);
        }
        value = last.value;
        for (int i = outer.GetCount() - 1; i >= 0; --i)
            value = outer[i] * PowerOfTen(std::isnan(value) ? 0 : std::trunc(value));
    }
    if (consumed)
        *consumed = static_cast<int>(position - text);
    return value;
}

void OQAppendNumber(OQString& text, int64_t value, int minimumDigits, int base, uint32_t flags)
{
    const auto bits = static_cast<uint64_t>(value);
    const bool plus = value > 0 && (flags & OQNumberPlus);
    AppendDigits(text, value < 0 ? 0 - bits : bits,
        value < 0  ? u"-"
            : plus ? u"+"
                   : u"",
        minimumDigits, base, flags);
}

void OQAppendUnsigned(OQString& text, uint64_t value, int minimumDigits, int base, uint32_t flags)
{
    const bool plus = value > 0 && (flags & OQNumberPlus);
    AppendDigits(text, value, plus ? u"+" : u"", minimumDigits, base, flags);
}

OQString OQIntToText(int64_t value)
{
    OQString text;
    OQAppendNumber(text, value);
    return text;
}

OQString OQHexToText(uint32_t value, int minimumDigits)
{
    OQString text;
    OQAppendNumber(text, value, minimumDigits, 16);
    return text;
}

OQString OQFloatToText(float value)
{
    return ShortestText(value);
}

OQString OQDoubleToText(double value)
{
    return ShortestText(value);
}

OQString OQFixedToText(double value, int decimals)
{
    if (std::isnan(value))
        return u"nan";
    char buffer[DecimalTextSize];
    const auto result = std::to_chars(buffer, std::end(buffer), value, std::chars_format::fixed,
        std::clamp(decimals, 0, MaximumFixedDecimals));
    return FromAscii(buffer, result.ptr);
}
