#include "foundation/OQStringArraySort.h"

#include "foundation/IOQTools.h"
#include "foundation/OQNumberText.h"
#include "foundation/StringPrinting.h"

namespace {

// Longest first; notes how it was asked.
class FakeText final : public IOQText
{
public:
    int32_t Compare(const OQChar* a, const OQChar* b, int32_t mode, int32_t numbers,
        int32_t length) const override
    {
        asked = OQStringArray { OQIntToText(mode), OQIntToText(numbers), OQIntToText(length) };
        return OQString(b).GetLength() - OQString(a).GetLength();
    }

    int32_t Find(const OQChar*, const OQChar*, int32_t) const override { return -1; }

    mutable OQStringArray asked;
};

OQString Sorted(OQStringArray texts, const OQStringArraySort& sort)
{
    sort.Sort(texts);
    return texts.Join(u" ");
}

}

TEST_CASE("Texts are sorted by the tools module's comparison with numbers and the given mode")
{
    const FakeText text;
    const OQStringArraySort sort(OQTextIgnoreCase, &text);
    CHECK(Sorted({ u"a" }, sort) == u"a");
    CHECK(text.asked.IsEmpty());
    CHECK(Sorted({ u"a", u"ccc", u"bb" }, sort) == u"ccc bb a");
    CHECK(text.asked.Join(u" ") == u"1 1 -1");
}

TEST_CASE("Without the tools module texts are sorted by their units, or those of their lower case")
{
    const OQStringArray texts { u"b", u"C", u"a", u"B2", u"A1", u"10", u"9", u"\u00e4" };
    CHECK(Sorted(texts, { OQTextIgnoreCase, nullptr }) == u"10 9 a A1 b B2 C \u00e4");
    CHECK(Sorted(texts, { 0, nullptr }) == u"10 9 A1 B2 C a b \u00e4");
}
