#include "foundation/OQFormat.h"

#include "foundation/StringPrinting.h"

TEST_CASE("Every conversion of the small printf")
{
    CHECK(OQFormat(u"%d %i %5d|% 5d|%.3d", { 7, -7, 42, 42, 1 }) == u"7 -7 00042|   42|1");
    CHECK(OQFormat(u"%u %I64u %ld", { 7u, -1, -2 }) == u"7 18446744073709551615 -2");
    CHECK(OQFormat(u"%x %X %h %p", { 255, 255, 255, 255 }) == u"ff FF 0x000000FF 00000000000000FF");
    CHECK(OQFormat(u"%s %S %s %2s", { "narrow", u"wide", OQString(u"text"), u"cut" })
        == u"narrow wide text cu");
    CHECK(OQFormat(u"%.1f %f %.0f", { 1.25, 0.5, 2.5 }) == u"1.2 0.500000 2");
    CHECK(OQFormat(u"%c%c%c%%", { 65, 0, 65536 }) == u"A%");
}

TEST_CASE("Formats and arguments that don't fit are harmless")
{
    CHECK(OQFormat(nullptr, {}).IsEmpty());
    CHECK(OQFormat(u"%z %", {}) == u"z ");
    CHECK(OQFormat(u"%d %s|%c|%f", {}) == u"0 ||0.000000");
    CHECK(OQFormat(u"%d %s %f", { u"text", 5, 5 }) == u"0  0.000000");
    CHECK(OQFormat(
              u"%s %s", { static_cast<const char*>(nullptr), static_cast<const OQChar*>(nullptr) })
        == u"(null) (null)");
    CHECK(OQFormat(u"%99999999999d", { 1 }).GetLength() < 1000);
    CHECK(OQFormat(u"%.99999999999f", { 1.0 }).GetLength() < 1000);
}
