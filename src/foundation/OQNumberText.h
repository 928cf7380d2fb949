#pragma once

#include "foundation/OQString.h"

#include <cstdint>

// Numbers from text and to text, the same in every locale; the decimal point is ".". A null text
// counts as empty.

// White space, one sign, then digits up to the first other character; no digits give 0. Clamped to
// the greatest number of the type before the sign is applied, so the least ones can't be had.
int32_t OQTextToInt(const OQChar* text);
int64_t OQTextToInt64(const OQChar* text);

// White space, one sign, then hexadecimal digits up to the first other character; modulo 2^32.
// `consumed`: characters read, 0 without a digit.
uint32_t OQHexTextToUInt(const OQChar* text, int* consumed = nullptr);

// What stands between the "&#" and the ";" of a character's reference: decimal digits, or "x" and
// hexadecimal ones. 0 for another text, and for one of more than 7 characters.
uint32_t OQReferenceToUInt(std::u16string_view text);

// The decimal number at the start of the text: a sign, digits, ".", digits, "e", and an exponent of
// the same form, whose fraction is cut off. Every part may be missing, and no white space is
// skipped. Whole part and fraction are collected modulo 2^64, the value is whole + fraction / 10^n,
// times 10 to the exponent, each in double precision: not always the double nearest to the text.
// `consumed`: characters read.
double OQTextToDouble(const OQChar* text, int length, int* consumed = nullptr);

enum OQNumberFlags : uint32_t
{
    OQNumberLowerCase = 1, // letters of bases above 10
    OQNumberPlus = 2, // a "+" in front of a value above 0
    OQNumberHexPrefix = 4, // "0x", with base 16 only
    OQNumberThousands = 8, // "," between groups of three digits
    OQNumberOrdinal = 16, // "st", "nd", "rd" or "th" behind
    OQNumberPadBlanks = 32, // blanks in front for missing digits, not zeros
};

// base: 2 to 36, others count as 10. `minimumDigits`: 256 at most. A sign or a prefix is no digit.
void OQAppendNumber(
    OQString& text, int64_t value, int minimumDigits = 1, int base = 10, uint32_t flags = 0);

void OQAppendUnsigned(
    OQString& text, uint64_t value, int minimumDigits = 1, int base = 10, uint32_t flags = 0);

OQString OQIntToText(int64_t value);
OQString OQHexToText(uint32_t value, int minimumDigits = 1); // upper case

// As many decimals as tell the value from its neighbours, 16 at most; none, and no point, for a
// whole number. "nan", "inf", "-inf".
OQString OQFloatToText(float value);
OQString OQDoubleToText(double value);

// Exactly that many decimals, 0 to 64, correctly rounded from the binary value, halves to even.
OQString OQFixedToText(double value, int decimals);
