#include "foundation/OQCharacters.h"

#include <doctest/doctest.h>

TEST_CASE("Lower case is Latin-1's below 256 and Unicode's simple folding above")
{
    CHECK(OQToLower(u'A') == u'a');
    CHECK(OQToLower(u'_') == u'_');
    CHECK(OQToLower(0xC0) == 0xE0);
    CHECK(OQToLower(0xD7) == 0xD7); // the multiplication sign
    CHECK(OQToLower(0xDF) == 0xDF);
    CHECK(OQToLower(0x0100) == 0x0101); // every second character of a range
    CHECK(OQToLower(0x0101) == 0x0101);
    CHECK(OQToLower(0x0178) == 0xFF);
    CHECK(OQToLower(0x0416) == 0x0436);
    CHECK(OQToLower(0x03C2) == 0x03C3); // final sigma
    CHECK(OQToLower(0x1F88) == 0x1F80);
    CHECK(OQToLower(0x212A) == u'k'); // the kelvin sign
    CHECK(OQToLower(0x0130) == 0x0130); // folds to two characters, so not at all
    CHECK(OQToLower(0xFF21) == 0xFF41);
    CHECK(OQToLower(0xD801) == 0xD801);
}

TEST_CASE("Upper case undoes lower case and nothing else")
{
    int pairs = 0;
    for (int c = 0; c < 0x10000; ++c) {
        const auto character = static_cast<OQChar>(c);
        const OQChar upper = OQToUpper(character);
        const OQChar lower = OQToLower(character);
        REQUIRE(OQToLower(lower) == lower);
        if (upper != character)
            REQUIRE(OQToLower(upper) == character);
        pairs += upper != character;
    }
    CHECK(pairs > 1000);
    CHECK(OQToUpper(0x03B9) == 0x0399); // iota's, not the sign that combines below
    CHECK(OQToUpper(0xFF) == 0x178);
}

TEST_CASE("Classes")
{
    CHECK(OQGetCharacterClass(u'7') == (OQClassDigit | OQClassPrintable));
    CHECK(OQGetCharacterClass(u'q') == (OQClassLetter | OQClassLowerCase | OQClassPrintable));
    CHECK(OQGetCharacterClass(0xC4) == (OQClassLetter | OQClassUpperCase | OQClassPrintable));
    CHECK(OQGetCharacterClass(u'~') == (OQClassPunctuation | OQClassPrintable));
    CHECK(OQGetCharacterClass(u' ') == (OQClassSpace | OQClassPrintable));
    CHECK(OQGetCharacterClass(u'\t') == OQClassSpace);
    CHECK(OQGetCharacterClass(160) == (OQClassSpace | OQClassPrintable));
    CHECK(OQGetCharacterClass(0x7F) == 0);
    CHECK(OQGetCharacterClass(0xD800) == 0);
    CHECK(OQIsSpace(0x3000));
    CHECK(OQIsLetter(0x4E2D));
    CHECK((OQGetCharacterClass(0x0436) & OQClassLowerCase) != 0);
    CHECK_FALSE(OQIsLetter(0x201C));
    CHECK_FALSE(OQIsDigit(0x0660));
}
