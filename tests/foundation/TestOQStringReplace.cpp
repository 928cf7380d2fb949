#include "foundation/OQStringReplace.h"

#include "foundation/IOQTools.h"
#include "foundation/StringPrinting.h"

namespace {

// Searches as the tools module does, and notes how it was asked.
class FakeText final : public IOQText
{
public:
    int32_t Compare(const OQChar*, const OQChar*, int32_t, int32_t, int32_t) const override
    {
        return 0;
    }

    int32_t Find(const OQChar* text, const OQChar* needle, int32_t flags) const override
    {
        lastFlags = flags;
        return OQString(text).FindNoCase(needle);
    }

    mutable int32_t lastFlags = 0;
};

OQString Replaced(const OQChar* text, const OQStringArray& find, const OQStringArray& with)
{
    OQString result = text;
    result.Replace(find, with, find.GetCount());
    return result;
}

}

TEST_CASE("Replacing takes the earliest text, and of two at one place the first in the list")
{
    CHECK(Replaced(u"aab", { u"ab", u"a" }, { u"1", u"2" }) == u"21");
    CHECK(Replaced(u"aab", { u"a", u"ab" }, { u"2", u"1" }) == u"22b");
    CHECK(Replaced(u"abcabc", { u"a", u"c" }, { u"<->" }) == u"<->b<->b");
    CHECK(Replaced(u"aXa", { u"a", u"x" }, { u"1", u"2" }) == u"1X1");
}

TEST_CASE("Only the counted texts are looked for, and an empty or missing one ends it all")
{
    OQString text = u"abc";
    CHECK(text.Replace({ u"b", u"" }, { u"x" }, 2) == 0);
    CHECK(text.Replace({ u"b" }, { u"x" }, 2) == 0);
    CHECK(text == u"abc");
    CHECK(text.Replace({ u"b", u"" }, { u"x" }, 1) == 1);
    CHECK(text == u"axc");
    CHECK(text.Replace({ u"a" }, {}, -1) == 0);
    CHECK(text.Replace({ u"x" }, {}, 1) == 1);
    CHECK(text == u"ac");
}

TEST_CASE("Kept hits stand between prefix and suffix, in their own spelling")
{
    OQString text = u"one two";
    CHECK(text.Replace({ u"two", u"one" }, {}, 2, true, true, u"[", u"]") == 2);
    CHECK(text == u"[one] [two]");

    const FakeText search;
    text = u"One oNE two";
    const OQStringArray find { u"ONE" };
    CHECK(OQReplaceTexts(text, { find, {}, 1, &search, true, u"<", u">" }) == 2);
    CHECK(text == u"<One> <oNE> two");
    CHECK(search.lastFlags == 3);
}

TEST_CASE("Without regard to case a search goes on behind a zero, and never past the end")
{
    const FakeText search;
    OQString text(u"a\0A\0\0b", 6);
    const OQStringArray find { u"A", OQString(u"\0B", 2), OQString(u"\0b", 2) };
    const OQStringArray with { u"1", u"2", u"3" };
    CHECK(OQReplaceTexts(text, { find, with, 3, &search }) == 3);
    CHECK(text
        == OQString(u"1\0"
                    u"1\0"
                    u"3",
            5));
}
