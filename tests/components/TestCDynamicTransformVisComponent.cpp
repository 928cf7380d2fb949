#include "FeedbackTesting.h"
#include "components/CDisplacementGrid.h"
#include "components/CDynamicTransformVisComponent.h"
#include "engine2d/VisLimits.h"
#include "expression/CMathEvaluator.h"

#include <doctest/doctest.h>

#include <cstdlib>

namespace {

using Scene = FeedbackScene<CDynamicTransformVisComponent>;

}

TEST_CASE("Dynamic Transform: rows come in their order with the defaults")
{
    CDynamicTransformVisComponent component;
    CVisPropertyList saved;
    component.SaveProperties(saved);
    const std::pair<const OQChar*, const OQChar*> expected[] = { { u"PixelEquation", u"r=r;d=d" },
        { u"FrameEquation", u"" }, { u"ColorFadeEquation", u"r=1;g=1;b=1;" },
        { u"ColorAddEquation", u"" }, { u"ClipAtBorders", u"0" } };
    REQUIRE(saved.GetCount() == 5);
    for (int i = 0; i < 5; ++i) {
        CHECK(saved[i].Name == expected[i].first);
        CHECK(saved[i].Value == expected[i].second);
    }
}

TEST_CASE("A grid has a point each 8 pixels and one more, and its middle may lie off the picture's")
{
    const auto fill = [](CDisplacementGrid& grid, CMathEvaluator& equation) {
        double& d = equation.Variable(equation.GetVariable(u"d", true));
        double& r = equation.Variable(equation.GetVariable(u"r", true));
        CMathColumns columns(equation, { &d, &r });
        grid.Fill(columns, d, r);
    };
    CMathEvaluator nothing;
    CDisplacementGrid grid;
    for (const auto& [width, height] : { std::pair(40, 24), std::pair(47, 31), std::pair(1, 9) }) {
        grid.Resize(width, height);
        CHECK(grid.Width() == width / 8 + 1);
        CHECK(grid.Height() == height / 8 + 1);
        fill(grid, nothing);
        for (int32_t i = 0; i < grid.Width() * grid.Height() * 2; ++i)
            CHECK(std::abs(grid.Points()[i]) <= 1);
    }
    // 6 x 4 points: the middle is (24, 16), the radius is the way from there to (0, 0).
    grid.Resize(40, 24);
    CMathEvaluator equation;
    equation.SetEquation(u"d=if(above(r,.25),1,0);r=.75");
    fill(grid, equation);
    const int32_t radius = 922; // the root of 24 * 24 + 16 * 16, x 32
    CHECK(std::abs(grid.Points()[0] - 24 * 32) <= 1); // left above: r is above .25
    CHECK(std::abs(grid.Points()[1] - (16 * 32 + radius)) <= 1);
    CHECK(grid.Points()[5 * 2] == (24 - 40) * 32); // right above
    CHECK(grid.Points()[5 * 2 + 1] == 16 * 32);
    CHECK(CDisplacementGrid::KeptPixels(40, 24) == 6 * 4 * 4);
    CHECK(CDisplacementGrid::KeptPixels(-1, 24) == 0);
}

TEST_CASE("The picture is pulled toward the middle of the grid, one pixel ahead across")
{
    Scene scene({ { u"PixelEquation", u"d=d*.5" } });
    scene.Draw(); // the dither is 38 % 32
    // (24 - 9) / 2 right of column 8, (16 - 8) / 2 below row 8.
    CHECK(scene.SourceOf(8, 8) == std::pair(8 + 8, 8 + 4));
    CHECK(scene.context.randomState == RandomStateAfter(0, 1));
    Scene still({ { u"PixelEquation", u"d=" }, { u"FrameEquation", u"d=" } });
    still.Draw();
    CHECK(still.SourceOf(30, 12) == std::pair(30, 12));
    CHECK(still.SourceOf(7, 3) == std::pair(7, 3));
}

TEST_CASE("Points see what the frame sets, colours don't, and all hear the beat")
{
    Scene scene({ { u"FrameEquation", u"t=t+1;impact=.5" },
        { u"PixelEquation", u"d=if(t-1,0,d);d=if(beat,1,d)" }, { u"ColorAddEquation", u"g=t" } });
    scene.Draw();
    CHECK(scene.SourceOf(30, 12) == std::pair(30, 12));
    scene.Draw();
    CHECK(scene.SourceOf(12, 8) == std::pair(23, 16)); // the middle, but for the pixel ahead
    scene.audio.values[VisAudioValueBeat] = -3;
    scene.Draw();
    CHECK(scene.SourceOf(12, 8) != std::pair(23, 16));
    // A new Prepare starts with fresh variables.
    scene.audio.values[VisAudioValueBeat] = 0;
    scene.component.SetRect({ 0, 0, 40, 24 });
    scene.Draw();
    CHECK(scene.SourceOf(30, 12) == std::pair(30, 12));

    Scene shared({ { u"FrameEquation", u"impact=.5" }, { u"ColorFadeEquation", u"b=1" },
        { u"ColorAddEquation", u"r=impact" } });
    CHECK(shared.DrawGrey() == 0x00FF7F7F);
}

TEST_CASE("Random numbers: the points' own ones come before the dither")
{
    // The first use of rand seeds once more, with the same clock; it takes two numbers a point.
    Scene scene({ { u"PixelEquation", u"d=d+rand(.1)-rand(.1)*0" } }, 16, 8);
    scene.Draw();
    CHECK(scene.context.randomState == RandomStateAfter(0, 3 * 2 * 4 + 1));
}

TEST_CASE("A Dynamic Transform refuses a buffer of another size and what a draw may not cost")
{
    Scene scene({ { u"PixelEquation", u"d=0" } });
    scene.component.SetRect({ 0, 0, 40, 25 });
    const uint32_t* before = scene.buffer.GetBits(-1);
    CHECK(scene.Draw() == -1);
    CHECK(scene.buffer.GetBits(0) == before);
    scene.component.SetRect({ 0, 0, 40, 24 });
    CMathEvaluator equation;
    equation.SetEquation(u"d=0");
    const int64_t area = 40 * 24;
    const int64_t points = 6 * 4;
    const int64_t work = area * VisLimits::dynamicTransformPixelWork
        + points * (VisLimits::gridPointWork + equation.GetWork());
    const int64_t colors = 100; // of the equation that the scene sets
    const int64_t start = points * VisLimits::mapEntryWork
        + (3 + 15) * VisLimits::compileCharacterWork; // of the pixel and the colour equation
    for (const int64_t prepare : { start, int64_t { 0 } }) {
        scene.context.workLeft = prepare + work - 1;
        CHECK(scene.Draw() == -1);
        CHECK(PixelAt(scene.buffer, 9, 9) == 0x0909);
        scene.context.workLeft = work + colors;
        CHECK(scene.Draw() == 0);
        CHECK(scene.SourceOf(9, 9) == std::pair(23, 16));
    }
}

TEST_CASE("Any number in a Dynamic Transform, in a picture of any size, is harmless")
{
    for (const OQChar* value :
        { u"10^300", u"-10^300", u"log(-1)", u"2147483647/32", u"10^7", u"rand(10^9)" }) {
        const OQString all = OQString(u"d=") + value + u";r=d;g=d;b=d";
        for (const auto& [width, height] : { std::pair(1, 1), std::pair(5, 5), std::pair(7, 3),
                 std::pair(3, 7), std::pair(41, 23) }) {
            for (const OQChar* clip : { u"0", u"1" }) {
                Scene scene(
                    { { u"PixelEquation", all.GetText() }, { u"FrameEquation", all.GetText() },
                        { u"ColorFadeEquation", all.GetText() },
                        { u"ColorAddEquation", all.GetText() }, { u"ClipAtBorders", clip } },
                    width, height);
                for (int i = 0; i < 2; ++i)
                    CHECK(scene.Draw() == 0);
            }
        }
    }
}
