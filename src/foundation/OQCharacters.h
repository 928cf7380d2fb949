#pragma once

#include "foundation/OQChar.h"

#include <cstdint>

// Character classes and case, the same in every locale: Latin-1 below 256, Unicode's simple case
// folding above. Characters outside the 16-bit range have neither class nor case.
enum OQCharacterClass : uint8_t
{
    OQClassDigit = 1,
    OQClassLetter = 2,
    OQClassSpace = 4,
    OQClassUpperCase = 8,
    OQClassLowerCase = 16,
    OQClassPunctuation = 32,
    OQClassPrintable = 64, // 160, the blank that doesn't break, counts too
};

// A combination of the bits above.
uint8_t OQGetCharacterClass(OQChar character);

inline bool OQIsDigit(OQChar character)
{
    return character >= u'0' && character <= u'9';
}

inline bool OQIsSpace(OQChar character)
{
    return OQGetCharacterClass(character) & OQClassSpace;
}

inline bool OQIsLetter(OQChar character)
{
    return OQGetCharacterClass(character) & OQClassLetter;
}

OQChar OQToLower(OQChar character);
OQChar OQToUpper(OQChar character);

// Value of a digit 0-9, a-f or A-F; -1 for anything else.
inline int OQHexDigitValue(OQChar character)
{
    if (OQIsDigit(character))
        return character - u'0';
    if (character >= u'a' && character <= u'f')
        return character - u'a' + 10;
    if (character >= u'A' && character <= u'F')
        return character - u'A' + 10;
    return -1;
}
