#include "ComponentScene.h"
#include "components/CTransformMap.h"
#include "components/CTransformVisComponent.h"
#include "components/TransformPresets.h"
#include "engine2d/VisLimits.h"
#include "expression/CMathEvaluator.h"
#include "foundation/OQString.h"

#include <doctest/doctest.h>

#include <limits>
#include <utility>
#include <vector>

namespace {

// A transform on a picture of its own.
struct Scene : ComponentScene<CTransformVisComponent>
{
    explicit Scene(Rows rows, int32_t width = 16, int32_t height = 12)
        : ComponentScene({ { u"DrawFrequency", u"1" } }, rows, width, height)
    {
    }

    void Draw() { DrawOver(); }
};

std::vector<uint16_t> BuildMap(const OQChar* equation, int32_t width, int32_t height,
    int32_t radiusMode = 2, bool clip = true, VisFractionPoint center = {})
{
    const OQString text = equation;
    CTransformMap map;
    map.Build(width, height, { &text, radiusMode, clip, center });
    REQUIRE(map.Entries16() != nullptr);
    return { map.Entries16(), map.Entries16() + static_cast<size_t>(width * height * 2) };
}

}

TEST_CASE("An identity map leads every pixel to itself, a hair below at most, in each radius mode")
{
    for (int32_t mode = 0; mode <= 4; ++mode) {
        const auto map = BuildMap(u"d=d;r=r;", 33, 20, mode, false, { 0.25f, -0.5f });
        for (int32_t y = 0; y < 20; ++y) {
            for (int32_t x = 0; x < 33; ++x) {
                const size_t entry = static_cast<size_t>(y * 33 + x) * 2;
                CHECK(std::abs(map[entry] - x * 32) <= 1);
                CHECK(std::abs(map[entry + 1] - y * 32) <= 1);
            }
        }
    }
    CHECK(BuildMap(u"d=d", 33, 20, 7, true) == BuildMap(u"d=d", 33, 20, 2, true));
    CHECK(BuildMap(u"d=", 33, 20) == BuildMap(u"d=d", 33, 20)); // a bad equation is the identity
}

TEST_CASE("The angle runs clockwise, x and y are in radii, and the script's variables run on")
{
    // A quarter turn on: the pixel right of the centre (20, 15) comes from above or below it.
    const auto turned = BuildMap(u"r=r+.25", 40, 30, 2, false);
    const size_t right = static_cast<size_t>(15 * 40 + 24) * 2;
    CHECK(std::abs(turned[right] - 20 * 32) <= 1);
    CHECK(std::abs(turned[right + 1] - 19 * 32) <= 1);

    const auto above = BuildMap(u"d=if(y>0.1,0,d)", 40, 30, 4, false); // up is positive
    CHECK(above[static_cast<size_t>(2 * 40 + 5) * 2] == 20 * 32);
    CHECK(above[static_cast<size_t>(28 * 40 + 5) * 2] != 20 * 32);

    // t counts the pixels: only the third one goes to the centre.
    const auto counted = BuildMap(u"t=t+1;d=if(equal(t,3),0,d)", 40, 30, 2, false);
    CHECK(counted[4] == 20 * 32);
    CHECK(counted[6] != 20 * 32);
}

TEST_CASE("Positions outside wrap below 0, and beyond the radius they are clipped to one value")
{
    const auto shifted = BuildMap(u"d=d*1.5", 40, 30, 2, false);
    CHECK(shifted[0] > 60000); // left of the picture
    const auto clipped = BuildMap(u"d=d*1.5", 40, 30, 2, true);
    CHECK(clipped[0] == 32767);
    CHECK(clipped[1] == 32767);
    const auto mirrored = BuildMap(u"d=-d*9", 40, 30, 2, true); // a negative distance is not beyond
    CHECK(mirrored[0] != 32767);
    for (const OQChar* equation :
        { u"d=1/(d-d)+10^300*10^300", u"d=log(-1)", u"r=10^308", u"d=10^30" })
        CHECK(BuildMap(equation, 40, 30, 2, false).size() == 2400u);
}

TEST_CASE("Small pictures take 16-bit entries, larger ones 32-bit entries of the same unit")
{
    const OQString equation = u"d=d";
    CTransformMap map;
    const CTransformMap::Settings settings { &equation, 2, false, {} };
    map.Build(2047, 32, settings);
    CHECK(map.Entries16() != nullptr);
    map.Build(2048, 32, settings);
    REQUIRE(map.Entries32() != nullptr);
    CHECK(map.Entries16() == nullptr);
    CHECK(std::abs(static_cast<int64_t>(map.Entries32()[2047 * 2]) - 2047 * 32) <= 4);
    const OQString far = u"d=d*3";
    map.Build(2048, 32, { &far, 2, true, {} });
    CHECK(map.Entries32()[0] == 0x7FFFFFFF);
    CHECK(map.IsBuiltFor(2048, 32));
    CHECK_FALSE(map.IsBuiltFor(2048, 33));
}

TEST_CASE("With the default draw frequency every second call works, beginning with the second")
{
    Scene scene({ { u"DrawFrequency", u"2" }, { u"TransformEquation", u"(none)" } });
    FillBuffer(scene.buffer, 0x00808080);
    scene.Draw();
    CHECK(scene.Pixel(5, 5) == 0x00808080);
    CHECK(scene.Pixel(0, 0) == 0x00808080);
    scene.Draw();
    CHECK(scene.Pixel(5, 5) == 0x007F7F7F); // 0x80 * 255 / 256
    CHECK(scene.Pixel(0, 0) == 0);
    CHECK(scene.Pixel(15, 11) == 0);
    Scene often({ { u"DrawFrequency", u"-3" } });
    FillBuffer(often.buffer, 0x00808080);
    often.Draw();
    CHECK(often.Pixel(0, 0) == 0);
}

TEST_CASE("Without a flip the layer goes on showing its picture, but for the cleared frame")
{
    Scene scene({ { u"FlipBuffer", u"No" }, { u"TransformEquation", u"(none)" } });
    FillBuffer(scene.buffer, 0x00808080);
    const uint32_t* shown = scene.buffer.GetBits(0);
    scene.Draw();
    CHECK(scene.buffer.GetBits(0) == shown);
    CHECK(scene.Pixel(1, 1) == 0x00808080);
    CHECK(scene.Pixel(0, 5) == 0);
    CHECK(PixelAt(scene.buffer, 5, 5, 1) == 0x007F7F7F);
}

TEST_CASE(
    "Only the transform's rectangle is redrawn, the rest of the other image comes to the front")
{
    Scene scene({ { u"TransformRectangle", u"0.5;0.5;1;1" }, { u"TransformEquation", u"(none)" } });
    FillBuffer(scene.buffer, 0x00808080);
    FillBuffer(scene.buffer, 0x00000033, 1);
    scene.Draw();
    CHECK(scene.Pixel(7, 6) == 0x33);
    CHECK(scene.Pixel(8, 5) == 0x33);
    CHECK(scene.Pixel(8, 6) == 0x007F7F7F);
    CHECK(scene.Pixel(14, 10) == 0x007F7F7F);
}

TEST_CASE(
    "Colour, scroll and zoom read their equations each frame, and a bad colour equation blackens")
{
    Scene colors(
        { { u"TransformEquation", u"(none)" }, { u"ColorEquation", u"r=.5;g=beat;b=impact" } });
    colors.audio.values[VisAudioValueBeat] = 1;
    colors.audio.values[VisAudioValueLevel] = 100;
    FillBuffer(colors.buffer, 0x00808080);
    colors.Draw();
    CHECK(colors.Pixel(5, 5) == 0x003F7F00); // 160 * 102 >> 8, 160 * 204 >> 8
    Scene bad({ { u"ColorEquation", u"r=1;g=1;b=" } });
    FillBuffer(bad.buffer, 0xFF808080);
    bad.Draw();
    CHECK((bad.Pixel(5, 5) & 0xFFFFFF) == 0);

    // x is a fraction of the smaller side, 12: a scroll of 3 columns, truncated.
    Scene scroll({ { u"TransformEquation", u"(none)" }, { u"ScrollEquation", u"x=.3;y=0" } });
    PixelAt(scroll.buffer, 4, 5) = 0x000000F0;
    scroll.Draw();
    CHECK(scroll.Pixel(7, 5) > 0xB0);
    Scene zoom({ { u"TransformEquation", u"(none)" }, { u"ZoomEquation", u"x=-.25;y=0" } });
    PixelAt(zoom.buffer, 4, 5) = 0x000000F0; // a negative zoom is a plain shift
    zoom.Draw();
    CHECK(zoom.Pixel(7, 5) > 0xB0);
}

TEST_CASE("A frame draws the dither, the row phase, and one column phase a row, in this order")
{
    Scene scene({ { u"TransformRectangle", u"1;0.25;1;0.75" } }); // rows 3 to 8, no columns
    scene.Draw();
    OQEngineContext expected;
    const OQEngineContextScope scope(&expected);
    for (int i = 0; i < 2 + 6; ++i)
        OQRand();
    CHECK(scene.context.randomState == expected.randomState);
}

TEST_CASE("Rows come in their order with the defaults, and any number in them is harmless")
{
    CTransformVisComponent transform;
    CVisPropertyList saved;
    transform.SaveProperties(saved);
    const std::pair<const OQChar*, const OQChar*> expected[]
        = { { u"TransformEquation", u"d=d*0.95;" }, { u"ScrollEquation", u"x=0;y=0" },
              { u"ZoomEquation", u"x=0;y=0;" }, { u"ColorEquation", u"r=1;g=1;b=1;" },
              { u"DrawFrequency", u"2" }, { u"FlipBuffer", u"1" }, { u"RadiusMode", u"2" },
              { u"ClipAtMaxRadius", u"1" }, { u"CenterPoint", u"0,0" },
              { u"TransformRectangle", u"0;0;1;1" } };
    REQUIRE(saved.GetCount() == 10);
    for (int i = 0; i < 10; ++i) {
        CHECK(saved[i].Name == expected[i].first);
        CHECK(saved[i].Value == expected[i].second);
    }
    CHECK(TransformPresets().GetCount() == 33);

    for (const OQChar* value :
        { u"10^300", u"-10^300", u"log(-1)", u"2147483647/12", u"-2147483648/12" }) {
        const OQString both = OQString(u"x=") + value + u";y=x;r=x;g=x;b=x";
        Scene scene({ { u"ScrollEquation", both.GetText() }, { u"ZoomEquation", both.GetText() },
            { u"ColorEquation", both.GetText() }, { u"CenterPoint", u"1e30,-1e30" },
            { u"TransformRectangle", u"-1e30;-9;1e30;9" } });
        for (int i = 0; i < 3; ++i)
            scene.Draw();
    }
}

TEST_CASE("A random look draws its three picks from the generator and has a step each frame")
{
    OQEngineContext context;
    const OQEngineContextScope scope(&context);
    CTransformVisComponent transform;
    transform.Randomize();
    CVisPropertyList saved;
    transform.SaveProperties(saved);
    CHECK(saved[4].Value == u"1");
    OQEngineContext expected;
    const OQEngineContextScope expectedScope(&expected);
    for (int i = 0; i < 3; ++i)
        OQRand();
    CHECK(context.randomState == expected.randomState);
}

TEST_CASE("A map that a draw may not cost is built in a later one, and nothing is drawn until then")
{
    Scene scene({ { u"TransformEquation", u"d=d" } });
    const int64_t area = 16 * 12;
    FillBuffer(scene.buffer, 0x00808080);
    CMathEvaluator equation;
    equation.SetEquation(u"d=d");
    scene.context.workLeft = 3 * VisLimits::compileCharacterWork
        + area * (VisLimits::transformPixelWork + VisLimits::mapEntryWork + equation.GetWork()) - 1;
    scene.Draw();
    CHECK(scene.Pixel(0, 0) == 0x00808080);
    scene.context.workLeft = 1'000'000;
    scene.Draw();
    CHECK(scene.Pixel(0, 0) == 0);

    // Once it is there a draw is cheap, but not free.
    scene.context.workLeft = area * 2 * VisLimits::transformPixelWork;
    FillBuffer(scene.buffer, 0x00808080);
    scene.Draw();
    CHECK(scene.Pixel(0, 0) == 0);
    scene.context.workLeft = area * VisLimits::transformPixelWork - 1;
    FillBuffer(scene.buffer, 0x00808080);
    scene.Draw();
    CHECK(scene.Pixel(0, 0) == 0x00808080);
}
