#include "foundation/OQPropertyMap.h"

#include "SlotOf.h"
#include "foundation/OQNumberText.h"
#include "foundation/OQXmlDocument.h"
#include "foundation/StringPrinting.h"

#include <cfloat>
#include <cmath>

namespace {

OQPropertyMap SomeItems()
{
    OQPropertyMap map;
    map.SetString(u"Name", u"<b> & \"c\" ]]>");
    map.SetString(u"Empty", u"");
    map.SetInt(u"Number", -12);
    map.SetString(u"", u"no key");
    map.SetString(u"Stra\u00dfe <\"'>", u" \t\r\n\U0001F3B5 ");
    map.SetString(u"Blanks", u"  ");
    return map;
}

}

TEST_CASE("Each operation of a property map keeps its slot")
{
    using Map = OQPropertyMap;
    const long slots[] = { SlotOf(&Map::Has),
        SlotOf<bool (Map::*)(OQString&, const OQString&, const OQChar*) const>(&Map::GetString),
        SlotOf(&Map::GetInt),
        SlotOf<int64_t (Map::*)(const OQString&, int64_t) const>(&Map::GetInt64),
        SlotOf<uint64_t (Map::*)(const OQString&, uint64_t) const>(&Map::GetInt64),
        SlotOf(&Map::GetDouble), SlotOf(&Map::GetPointer), SlotOf(&Map::SetString),
        SlotOf(&Map::SetInt), SlotOf<void (Map::*)(const OQString&, int64_t)>(&Map::SetInt64),
        SlotOf<void (Map::*)(const OQString&, uint64_t)>(&Map::SetInt64), SlotOf(&Map::SetPointer),
        SlotOf(&Map::SetDouble), SlotOf(&Map::Clear), SlotOf(&Map::Remove), SlotOf(&Map::Assign),
        SlotOf(&Map::Merge), SlotOf(&Map::Equals), SlotOf(&Map::SaveCounted),
        SlotOf<bool (Map::*)(const OQString&, int&)>(&Map::LoadCounted),
        SlotOf<bool (Map::*)(const OQString&)>(&Map::LoadCounted), SlotOf(&Map::SaveXml),
        SlotOf(&Map::LoadXml), SlotOf(&Map::SaveItems), SlotOf(&Map::LoadItems),
        SlotOf(&Map::Dump) };
    CHECK(std::size(slots) == 26);
    for (size_t i = 0; i < std::size(slots); ++i)
        CHECK(slots[i] == static_cast<long>(i) + 2);
}

TEST_CASE("Keys of a property map have no case, and keep their first spelling")
{
    OQPropertyMap map;
    CHECK_FALSE(map.Has(u"Volume"));
    map.SetString(u"Volume", u"1");
    map.SetString(u"VOLUME", u"2");
    CHECK(map.GetCount() == 1);
    CHECK(map.begin()->key == u"Volume");
    CHECK(map.GetString(u"volume") == u"2");
    map.SetString(u"volume", u"", true);
    CHECK_FALSE(map.Has(u"Volume"));
    CHECK(map.IsEmpty());
    map.SetString(u"Volume", u"");
    CHECK(map.Has(u"volume"));
    map.Remove(u"other");
    map.Remove(u"vOLUME");
    CHECK(map.IsEmpty());

    OQString text = u"old";
    CHECK_FALSE(map.GetString(text, u"a", nullptr));
    CHECK(text.IsEmpty());
    CHECK_FALSE(map.GetString(text, u"a", u"default"));
    CHECK(text == u"default");
}

TEST_CASE("Numbers in a property map are text; what is no number is 0, what is missing the default")
{
    OQPropertyMap map;
    map.SetString(u"abc", u"abc");
    map.SetString(u"12abc", u" +12abc");
    map.SetString(u"big", u"-99999999999999999999");
    CHECK(map.GetInt(u"abc", 7) == 0);
    CHECK(map.GetInt64(u"abc", int64_t { 7 }) == 0);
    CHECK(map.GetDouble(u"abc", 7) == 0);
    CHECK(map.GetPointer(u"big", &map) == nullptr);
    CHECK(map.GetInt(u"missing", INT32_MIN) == INT32_MIN);
    CHECK(map.GetDouble(u"missing", 1e-300) == 1e-300);
    CHECK(map.GetPointer(u"missing", &map) == &map);
    CHECK(map.GetInt(u"12abc", 0) == 12);
    CHECK(map.GetDouble(u"12abc", 0) == 12);
    CHECK(map.GetInt(u"big", 0) == -2147483647);
    CHECK(map.GetInt64(u"big", int64_t { 0 }) == -INT64_MAX);

    map.SetInt64(u"n", int64_t { -5000000000 });
    CHECK(map.GetString(u"n") == u"-5000000000");
    map.SetInt64(u"n", UINT64_MAX - 1);
    CHECK(map.GetInt64(u"n", uint64_t { 0 }) == UINT64_MAX - 1);

    map.SetPointer(u"p", reinterpret_cast<void*>(0xABCDEF12345));
    CHECK(map.GetString(u"p") == u"00000ABCDEF12345");
    CHECK(map.GetPointer(u"p", nullptr) == reinterpret_cast<void*>(0xABCDEF12345));
    map.SetString(u"p", u"0xaBc!1");
    CHECK(map.GetPointer(u"p", nullptr) == reinterpret_cast<void*>(0xABC));
}

TEST_CASE("A double comes back from a property map as it was")
{
    OQPropertyMap map;
    map.SetDouble(u"d", 0.25);
    CHECK(map.GetString(u"d") == u"0.25");
    map.SetDouble(u"d", -3);
    CHECK(map.GetString(u"d") == u"-3");
    for (const double value : { 0.1 + 0.2, 1e300, -DBL_MAX, DBL_TRUE_MIN, 5e-20, 1.0 / 3 }) {
        map.SetDouble(u"d", value);
        CHECK(map.GetDouble(u"d", 7) == value);
    }

    const struct
    {
        const OQChar* text;
        double value;
    } read[] = { { u" +1.5e2x", 150 }, { u"-.5", -0.5 }, { u"+-1", 0 }, { u"1e999", 0 },
        { u"inf", 0 }, { u"nan", 0 }, { u"\uff11", 0 }, { u"", 0 } };

    for (const auto& [text, value] : read) {
        map.SetString(u"d", text);
        CHECK(map.GetDouble(u"d", 7) == value);
    }
}

TEST_CASE("Property maps are copied, merged and compared by value")
{
    const OQPropertyMap map = SomeItems();
    OQPropertyMap copy = map;
    CHECK(copy.Equals(map));
    copy.SetString(u"name", u"new");
    CHECK_FALSE(copy.Equals(map));
    CHECK(map.GetString(u"Name") != u"new");
    OQPropertyMap other;
    other.SetString(u"NAME", map.GetString(u"Name").GetText());
    other.SetString(u"More", u"1");
    copy.Merge(other);
    CHECK(copy.GetCount() == map.GetCount() + 1);
    copy.Remove(u"more");
    CHECK(copy.Equals(map));
    copy.Assign(copy);
    copy.Merge(copy);
    CHECK(copy.Equals(map));
    copy.Assign(OQPropertyMap());
    CHECK(copy.IsEmpty());

    OQPropertyMap one;
    one.SetString(u"k", u"v");
    OQString text;
    one.Dump(text, u"> ", u"\n");
    CHECK(text == u"> k: v\n");
}

TEST_CASE("The counted form of a property map comes back, from any position")
{
    OQPropertyMap map;
    OQString text;
    map.SaveCounted(text, true);
    CHECK(text == u"(1:0)");
    map.SetString(u"a", u"(1:x)");
    map.SaveCounted(text, true);
    CHECK(text == u"(1:1)(1:a)(5:(1:x))");
    OQString none;
    map.SaveCounted(none, false);
    CHECK(none == u"(1:0)");

    const OQPropertyMap full = SomeItems();
    full.SaveCounted(text, true);
    int position = 3;
    CHECK(map.LoadCounted(u"xyz" + text + u"tail", position));
    CHECK(map.Equals(full));
    CHECK(position == text.GetLength() + 3);
    CHECK(map.LoadCounted(text));
    CHECK(map.Equals(full));
}

TEST_CASE("A counted form that lies is read as far as it goes")
{
    const struct
    {
        const OQChar* text;
        const OQChar* items; // as by Dump
        int position;
    } cases[] = { { u"", u"", 0 }, { u"2", u"", 0 }, { u"(1:1", u"", 0 }, { u"(-1:1)", u"", 0 },
        { u"(:1)", u"", 0 }, { u"(99999999999999999999999:1)", u"", 0 }, { u"(1;1)", u"", 0 },
        { u"(1:1]", u"", 0 }, { u"(1", u"", 0 }, { u"(1:", u"", 0 },
        { u"(2:-1)(1:a)(1:b)", u"", 6 }, { u"(1:x)(1:a)(1:b)", u"", 5 },
        { u"(10:1000000000)(1:a)(1:b)", u"a: b;", 25 },
        { u"(1:2)(1:a)(1:b)(1:c)(9:d)", u"c: ;a: b;", 20 },
        { u"(1:1)(0:)(1:\u00e9)", u": \u00e9;", 14 } };

    for (const auto& [text, items, end] : cases) {
        OQPropertyMap map = SomeItems();
        int position = 0;
        map.LoadCounted(text, position);
        CHECK(position == end);
        OQString dump;
        map.Dump(dump, u"", u";");
        CHECK(dump == items);
    }
    OQPropertyMap map = SomeItems();
    int position = -1;
    CHECK_FALSE(map.LoadCounted(u"(1:0)", position));
    position = 6;
    CHECK_FALSE(map.LoadCounted(u"(1:0)", position));
    CHECK(position == 6);
    CHECK(map.IsEmpty());
}

TEST_CASE("The XML form of a property map comes back, if root and version are the ones asked for")
{
    OQPropertyMap map;
    OQString text = u"old";
    map.SaveXml(text, u"Root", true, 1);
    CHECK(text.IsEmpty());
    map.SaveXml(text, u"Root", false, 1);
    CHECK(text == u"<Root version=\"1.0\">\r\n</Root>");
    CHECK(map.LoadXml(text, u"Root", 1.0));
    map.SetString(u"k\"", u"<'\">");
    map.SaveXml(text, u"Root", false, 2.5);
    CHECK(
        text == u"<Root version=\"2.5\">\r\n<Item Name=\"k&quot;\">&lt;'\"&gt;</Item>\r\n</Root>");

    const OQPropertyMap full = SomeItems();
    full.SaveXml(text, u"Root", true, 1.1);
    CHECK(map.LoadXml(text, u"Root", 1.1));
    CHECK(map.Equals(full));
    for (const double version : { 1.0, 1.2, 0.0 }) {
        CHECK_FALSE(map.LoadXml(text, u"Root", version));
        CHECK(map.IsEmpty());
        map = full;
    }
    CHECK_FALSE(map.LoadXml(text, u"Other", 1.1));
    CHECK_FALSE(map.LoadXml(u"", u"Root", 1.1));
    CHECK(map.LoadXml(u"<?xml?><x/><R version='1'>no<Else Name='a'>1</Else><Item Name='b'>2</x>"
                      u"</Item><Item>3</Item><Item Name='c'>4</R>",
        u"R", 1));
    CHECK(map.GetCount() == 3);
    CHECK(map.GetString(u"b") == u"2");
    CHECK(map.GetString(u"") == u"3");
    CHECK(map.GetString(u"c").IsEmpty()); // it isn't ended
}

TEST_CASE("Items of a property map stand among other elements of a document")
{
    OQXmlDocument document;
    document.AddElem(u"Key");
    document.AddChildElem(u"Other");
    document.IntoElem();
    SomeItems().SaveItems(document);
    OQXmlDocument again;
    REQUIRE(again.SetDocument(document.GetDoc()));
    again.FindElem(u"Key");
    again.IntoElem();
    OQPropertyMap map;
    map.SetString(u"old", u"");
    map.LoadItems(again);
    CHECK(map.Equals(SomeItems()));
    CHECK(again.OutOfElem());
    CHECK(again.GetTagName() == u"Key");
}

TEST_CASE("Keys that all meet in one chain of a property map don't hold the reader up")
{
    // (1, -126, 3969) added to three characters doesn't change the hash modulo 2^32.
    const OQString blocks[] = { u"\u5000\u5100\u5000", u"\u5001\u5082\u5f81" };
    REQUIRE(OQHashText(blocks[0].View()) == OQHashText(blocks[1].View()));
    OQString text = u"(5:65536)";
    for (int i = 0; i < 65536; ++i) {
        text += u"(48:";
        for (int bit = 0; bit < 16; ++bit)
            text += blocks[i >> bit & 1];
        text += u")(0:)";
    }
    OQPropertyMap map;
    CHECK_FALSE(map.LoadCounted(text));
    CHECK(map.GetCount() > 1000);
    CHECK(map.GetCount() < 20000);
}

TEST_CASE("A hundred thousand items of a property map come back")
{
    OQPropertyMap map;
    for (int i = 0; i < 100000; ++i)
        map.SetInt(OQIntToText(i), i);
    OQString text;
    map.SaveCounted(text, true);
    OQPropertyMap again;
    CHECK(again.LoadCounted(text));
    CHECK(again.Equals(map));
}
