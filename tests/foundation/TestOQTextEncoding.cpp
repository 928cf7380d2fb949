#include "foundation/OQTextEncoding.h"

#include "foundation/StringPrinting.h"

using namespace std::string_view_literals;

TEST_CASE("UTF-8 goes both ways, and what isn't UTF-8 becomes the replacement character")
{
    const auto text = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xB5"sv;
    CHECK(OQString::FromUtf8(text) == u"a\u00e9\u20ac\U0001F3B5");
    CHECK(OQString::FromUtf8(text).ToUtf8() == text);

    CHECK(OQString::FromUtf8("\xC0\xAF") == u"\ufffd\ufffd"); // an overlong "/"
    CHECK(OQString::FromUtf8("\xED\xA0\x80") == u"\ufffd\ufffd\ufffd"); // a surrogate
    CHECK(OQString::FromUtf8("\xF4\x90\x80\x80").GetLength() == 4); // above U+10FFFF
    CHECK(OQString::FromUtf8("\xE2\x82") == u"\ufffd"); // cut short
    CHECK(OQString::FromUtf8("\xE2\x82(") == u"\ufffd(");

    const OQChar halves[] = { u'a', 0xD83C, u'b', 0xDFB5, 0xD83C, 0 };
    CHECK(OQString(halves).ToUtf8()
        == "a\xEF\xBF\xBD"
           "b\xEF\xBF\xBD\xEF\xBF\xBD");
    CHECK(OQString::FromNarrow("\xE9") == u"\u00e9");
}

TEST_CASE("The encoding of bytes is told by their mark or their look")
{
    CHECK(OQBytesToText("") == u"");
    CHECK(OQBytesToText("plain") == u"plain");
    CHECK(OQBytesToText("\xEF\xBB\xBF\xC3\xA9") == u"\u00e9");
    CHECK(OQBytesToText("\xC3\xA9") == u"\u00e9");
    // One byte that is no UTF-8 makes all of it windows-1252.
    CHECK(OQBytesToText("\xC3\xA9 \x80") == u"\u00c3\u00a9 \u20ac");
    CHECK(OQBytesToText("\xC3") == u"\u00c3");

    CHECK(OQBytesToText("\xFF\xFE\xAC\x20"sv) == u"\u20ac");
    CHECK(OQBytesToText("\xFE\xFF\x20\xAC"sv) == u"\u20ac");
    CHECK(OQBytesToText("\xFF\xFE\xAC"sv) == u""); // half a unit
    CHECK(OQBytesToText("a\0b\0"sv) == u"ab");
    CHECK(OQBytesToText("abc\0\0"sv) == OQString(u"abc\0\0", 5)); // zeros at the end say nothing
    // Zero, zero, not zero: 32-bit units, of which 16 bits can't hold the last.
    CHECK(OQBytesToText("\x2D\x4E\0\0\x2E\x4E\0\0\x01\0\x01\0"sv) == u"\u4e2d\u4e2e?");
}
