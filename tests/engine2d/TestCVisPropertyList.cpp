#include "engine2d/CVisPropertyList.h"
#include "engine2d/VisPresets.h"
#include "engine2d/VisPropertyText.h"

#include <doctest/doctest.h>

#include <limits>

namespace {

OQString RectThrough(const OQChar* text)
{
    VisFractionRect rect { 0.1f, 0.2f, 0.3f, 0.4f };
    TextToRect(text, rect);
    return RectToText(rect);
}

}

TEST_CASE(
    "Rectangles are written with semicolons and five decimals, and read with either separator")
{
    CHECK(RectThrough(u"0,0.5,1,1") == u"0;0.5;1;1");
    CHECK(RectThrough(u"0;0.123456;-1;2.000001") == u"0;0.12346;-1;2");
    CHECK(RectThrough(u" -0.000001; 1e1;+3;.5") == u"0;10;3;0.5");
    for (const OQChar* other : { u"", u"0,1", u"0;0;1", u"0;0;1;1;1", u"0,0,1;1" })
        CHECK(RectThrough(other) == u"0.1;0.2;0.3;0.4");
}

TEST_CASE("Pixel rectangles truncate single-precision products, out of range too")
{
    const VisFractionRect rightHalf { 0.5f, 0, 1, 1 };
    CHECK(PixelRect(rightHalf, 101, 33) == OQRect { 50, 0, 101, 33 });
    // 300 * 0.01 is 3 in single precision and a hair less in double
    CHECK(PixelRect({ 0.01f, -0.01f, 1e30f, std::numeric_limits<float>::quiet_NaN() }, 300, 100)
        == OQRect { 3, -1, INT32_MIN, INT32_MIN });
}

TEST_CASE("Numbers take as many decimals as they need in preset rows, six with the zeros cut in "
          "plain ones")
{
    CVisPropertyList list;
    list.AddFloat(u"a", 0.01f, NoYesPresets());
    list.AddFloat(u"b", 1.0f, NoYesPresets());
    list.AddFloatPlain(u"c", 1.0f);
    list.AddFloatPlain(u"d", 0.25f);
    list.AddInt(u"e", 1, NoYesPresets());
    CHECK(list[0].Value == u"0.01");
    CHECK(list[1].Value == u"1");
    CHECK(list[2].Value == u"1.");
    CHECK(list[3].Value == u"0.25");
    CHECK(list[4].Value == u"1");
    CHECK(list[4].Kind == CVisPropertyRow::KindPresets);
    CHECK(list[4].Presets.Find(u"1|") >= 0);
}

TEST_CASE("An editor gets friendly names for the values that have one")
{
    CVisPropertyList list(true);
    list.AddPresetRow(u"OutputMode", u"2", OutputModePresets());
    list.AddPresetRow(u"OutputMode", u"7", OutputModePresets());
    CHECK(list[0].Value == u"Add");
    CHECK(list[0].Presets.Find(u"Blend (50 / 50)|") >= 0);
    CHECK(list[1].Value == u"7");
    CHECK(ResolvePreset(u"Add", OutputModePresets()) == u"2");
    CHECK(ResolvePreset(u"add", OutputModePresets()) == u"add"); // names are exact
}

TEST_CASE("Rows past the limit are dropped")
{
    CVisPropertyList list;
    for (int i = 0; i < 3000; ++i)
        list.AddRow(u"x", u"1");
    CHECK(list.GetCount() == 1024);
}
