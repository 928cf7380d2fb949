#include "foundation/OQStringLeadingCharacters.h"

#include <doctest/doctest.h>

TEST_CASE("Runs of white space and of digits end at the first other character")
{
    const OQStringLeadingWhitespaceCharacters space;
    CHECK(space.CountIn(u" \t\u00a0\r\nx ") == 5);
    CHECK(space.CountIn(u"x") == 0);
    CHECK(space.CountIn({}) == 0);
    const OQStringLeadingDigitCharacters digits;
    CHECK(digits.CountIn(u"0123456789") == 10);
    CHECK(digits.CountIn(u"12.5") == 2);
}

TEST_CASE("A word is letters and the marks between them")
{
    const OQStringLeadingWordCharacters word;
    CHECK(word.CountIn(u"don't stop") == 5);
    CHECK(word.CountIn(u"dogs' tails") == 4);
    CHECK(word.CountIn(u"'tis") == 0);
    CHECK(word.CountIn(u"well-known") == 10);
    CHECK(word.CountIn(u"-x") == 2);
    CHECK(word.CountIn(u"x-") == 1);
    CHECK(word.CountIn(u"x--y") == 1);
    CHECK(word.CountIn(u"\u0416\u00e2\u00e9 1") == 3);
    CHECK(word.CountIn(u"a1") == 1);
}
