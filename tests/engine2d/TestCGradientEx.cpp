#include "engine2d/CGradientEx.h"
#include "foundation/OQEngineContext.h"

#include <doctest/doctest.h>

namespace {

CGradientEx GradientOf(const OQChar* text)
{
    CGradientEx gradient;
    gradient.SetText(text);
    return gradient;
}

}

TEST_CASE("A look-up truncates each corner's share, and comes out with red lowest")
{
    const CGradientEx grey = GradientOf(u"{2, 1} [[0x000000,0xFFFFFF]]");
    CHECK(grey.Lookup(0.5f, 0) == 0x7F7F7F);
    CHECK(grey.Lookup(1.0f, 1.0f) == 0xFFFFFF);
    CHECK(GradientOf(u"{1, 1} [[0x102030]]").Lookup(0.5f, 0.5f) == 0x302010);

    const CGradientEx corners = GradientOf(u"{2, 2} [[0x010000,0x030000][0x050000,0x0A0B0C]]");
    CHECK(corners.Lookup(1.0f, 1.0f) == 0x0C0B0A);
    // 1/4 of 1, 3, 5 and 10, each truncated: 0 + 0 + 1 + 2
    CHECK((corners.Lookup(0.5f, 0.5f) & 0xFF) == 3);
}

TEST_CASE("A table divides by its size, so that the last entry stops short, at any length")
{
    CGradientEx gradient = GradientOf(u"{2, 1} [[0x000000,0xFFFFFF]]");
    gradient.BuildTable(0, 4);
    CHECK(gradient.TableColor(1) == gradient.Lookup(0.25f, 0));
    CHECK(gradient.TableColor(3) == gradient.Lookup(0.75f, 0));
    gradient.BuildTable(0, 2'000'000'000); // not all of it is kept
    CHECK(gradient.TableColor(1'000'000'000) == gradient.Lookup(0.5f, 0));
    CHECK(gradient.TableColor(1'999'999'999) == 0xFFFFFF);
}

TEST_CASE(
    "Text without blanks comes back as it was, and a blank in front of a colour makes it black")
{
    const OQString text = u"{2, 3} [[0x0000FF,0x10A0B0][0x00FF00,0x000000][0xFF0000,0x123456]]";
    CHECK(GradientOf(text.GetText()).GetText() == text);
    CHECK(GradientOf(u"{3, 1} [[0xC0C0C0,0xFFE743, 0xFFFFFF]]").GetText()
        == u"{3, 1} [[0xC0C0C0,0xFFE743,0x000000]]");
    CHECK(GradientOf(u"{1, 1} [[0xFF123456]]").GetText() == u"{1, 1} [[0x123456]]"); // low 24 bits
}

TEST_CASE("An empty or malformed text gives the default, which seeds the random numbers")
{
    const OQString standard
        = u"{2, 4} [[0x0000FF,0x000000][0x00FF00,0x000000][0xFF0000,0x000000][0x0000FF,0x000000]]";
    for (const OQChar* text : { u"", u"red", u"{2}", u"{0, 1} [[]]", u"{-2, -2} [[0x1,0x2]]",
             u"{2, 1} [[0xFF0000]]", u"{3, 2} [[0x1,0x2][0x3,0x4,0x5]]", u"{2, 1} [[0x1,0x2",
             u"{65536, 2} [[0x1,0x2]]", u"{2000000000, 2000000000} [[0x1]]" }) {
        OQEngineContext context;
        context.virtualClock = true;
        context.virtualNanoseconds = 4'711'000'000;
        const OQEngineContextScope scope(&context);
        CHECK(GradientOf(text).GetText() == standard);
        CHECK(context.randomState == 4711);
    }
    OQEngineContext context;
    const OQEngineContextScope scope(&context);
    GradientOf(u"{1, 1} [[0x1]]");
    CHECK(context.randomState == 1);
}
