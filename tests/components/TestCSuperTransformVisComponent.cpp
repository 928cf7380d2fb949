#include "FeedbackTesting.h"
#include "components/CSuperTransformMap.h"
#include "components/CSuperTransformVisComponent.h"
#include "components/SuperTransformPresets.h"
#include "engine2d/VisLimits.h"
#include "expression/CMathEvaluator.h"

#include <doctest/doctest.h>

#include <cstdlib>
#include <vector>

namespace {

using Scene = FeedbackScene<CSuperTransformVisComponent>;

constexpr auto transform = u"TransformEquation";

std::vector<int16_t> BuildMap(const OQChar* equation, int32_t width, int32_t height)
{
    CMathEvaluator evaluator;
    evaluator.SetEquation(equation);
    CSuperTransformMap map;
    REQUIRE(map.Build(width, height, evaluator));
    REQUIRE(map.Entries16() != nullptr);
    return { map.Entries16(), map.Entries16() + static_cast<size_t>(width * height * 2) };
}

}

TEST_CASE("A super map leads every pixel to itself, told from the centre, for any picture's size")
{
    for (const auto& [width, height] : { std::pair(33, 20), std::pair(20, 33), std::pair(7, 3),
             std::pair(1, 1), std::pair(2, 5) }) {
        const auto map = BuildMap(u"", width, height);
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) {
                const size_t entry = static_cast<size_t>(y * width + x) * 2;
                CHECK(std::abs(map[entry] - (x - (width + 1) / 2) * 32) <= 1);
                CHECK(std::abs(map[entry + 1] - (y - (height + 1) / 2) * 32) <= 1);
            }
        }
    }
}

TEST_CASE("The super angle runs counter-clockwise, d is 1 at the corners, variables run on")
{
    const auto at = [](const std::vector<int16_t>& map, int32_t x, int32_t y) {
        const size_t entry = static_cast<size_t>(y * 40 + x) * 2;
        return std::pair<int32_t, int32_t>(map[entry], map[entry + 1]);
    };
    // The centre is (20, 15), the radius 25. What lies right comes from above.
    const auto turned = BuildMap(u"r=r+.25", 40, 30);
    CHECK(std::abs(at(turned, 24, 15).first) <= 1);
    CHECK(std::abs(at(turned, 24, 15).second + 4 * 32) <= 1);
    // Right above it r is 0.25, right below it 0.75.
    const auto half = BuildMap(u"d=if(above(r,.7499),1,if(above(r,.2499),0,d))", 40, 30);
    CHECK(at(half, 20, 10) == std::pair(0, 0));
    CHECK(std::abs(at(half, 20, 20).second - 25 * 32) <= 1);
    CHECK(std::abs(at(half, 24, 14).first - 4 * 32) <= 1);

    const auto counted = BuildMap(u"t=t+1;d=if(equal(t,3),0,d)", 40, 30);
    CHECK(at(counted, 2, 0) == std::pair(0, 0));
    CHECK(at(counted, 3, 0).first < -500);

    // 11 pixels x 100 is past 1023.97; a full turn of 8192 steps more changes nothing.
    const auto far = BuildMap(u"d=d*100;r=r+3", 40, 30);
    CHECK(std::abs(at(far, 31, 15).first - (11 * 3200 - 65536)) <= 1);
    for (const OQChar* equation :
        { u"d=10^300*10^300;r=d", u"d=log(-1);r=d", u"d=10^30", u"r=-10^9" })
        CHECK(BuildMap(equation, 40, 30).size() == 2400u);
}

TEST_CASE("Large pictures take 32-bit super entries, which don't wrap")
{
    CMathEvaluator evaluator;
    evaluator.SetEquation(u"d=d*3");
    CSuperTransformMap map;
    map.Build(2048, 32, evaluator);
    REQUIRE(map.Entries32() != nullptr);
    CHECK(map.Entries16() == nullptr);
    const size_t entry = static_cast<size_t>(16 * 2048 + 2047) * 2;
    CHECK(std::abs(map.Entries32()[entry] - 1023 * 96) <= 1);
    CHECK(CSuperTransformMap::KeptPixels(2048, 32) == 17 * 2048 * 2 + 2048 * 32 * 2);
    CHECK(CSuperTransformMap::KeptPixels(2047, 32) == 17 * 2047 * 2 + 2047 * 32);
    CHECK(CSuperTransformMap::KeptPixels(-5, -5) == 0);
}

TEST_CASE("Super Transform: rows come in their order with the defaults, the list as its entries")
{
    CSuperTransformVisComponent component;
    CVisPropertyList saved;
    component.SaveProperties(saved);
    const std::pair<const OQChar*, const OQChar*> expected[]
        = { { transform, kitchenSinkTransforms }, { u"ZoomEquation", u"" },
              { u"ScrollEquation", u"" }, { u"RotateEquation", u"" },
              { u"ColorFadeEquation", u"r=1;g=1;b=1;" }, { u"ColorAddEquation", u"" },
              { u"TransformChangeEquation", u"c=if(t>200,1,0);t=if(t>200,0,t+1)" },
              { u"ClipAtBorders", u"0" } };
    REQUIRE(saved.GetCount() == 8);
    for (int i = 0; i < 8; ++i) {
        CHECK(saved[i].Name == expected[i].first);
        CHECK(saved[i].Value == expected[i].second);
    }
    CVisPropertyList list;
    list.AddRow(transform, u"|d=d||");
    component.LoadProperties(&list);
    CVisPropertyList again;
    component.SaveProperties(again);
    CHECK(again[0].Value == u"|d=d||");
    CVisRowInfoList rows;
    component.DescribeRows(rows);
    CHECK(rows[0].form == CVisRowForm::EquationList);

    CHECK(SuperTransformPresets().GetCount() == 34);
    CHECK(ResolvePreset(u"(none)", SuperTransformPresets()).IsEmpty());
    CHECK(ResolvePreset(u"(none)", SuperTransformZoomPresets()).IsEmpty());
    CHECK(SuperTransformZoomPresets().GetCount() == 5);
    CHECK(SuperTransformFadePresets().GetCount() == 6);
    OQStringArray sink;
    OQString(kitchenSinkTransforms).Split(u'|', sink);
    CHECK(sink.GetCount() == 32);
    for (const OQString& equation : sink) {
        CMathEvaluator evaluator;
        evaluator.SetEquation(equation);
        CHECK(evaluator.IsCompiled());
    }
}

TEST_CASE("The first transform is picked before the generator is seeded, the next ones after it")
{
    // From state 1 comes 41, from seed 0 come 38, 7719, 21238, 2437: picks and dithers in turn.
    Scene scene({ { transform, u"d=0|d=d|d=1" }, { u"TransformChangeEquation", u"c=1" } });
    scene.Draw(); // 41 % 3
    CHECK(scene.SourceOf(10, 10).first != 10);
    CHECK(scene.SourceOf(10, 10).first != 20);
    CHECK(scene.context.randomState == RandomStateAfter(0, 2));
    scene.Draw(); // 38 % 3
    CHECK(scene.SourceOf(10, 10).first != 10);
    scene.Draw(); // 21238 % 3
    CHECK(scene.SourceOf(10, 10) == std::pair(10, 10));
    scene.Draw(); // 8855 % 3... after the dither 2437
    CHECK(scene.context.randomState == RandomStateAfter(0, 8));
}

TEST_CASE("With the default change equation the map changes at frames 0, 201 and 403")
{
    Scene scene({ { transform, u"d=d|d=0" } }, 5, 5);
    std::vector<int> changes;
    int numbers = 0;
    for (int frame = 0; frame < 410; ++frame) {
        scene.Draw();
        const bool changed = scene.context.randomState == RandomStateAfter(0, numbers + 2);
        if (changed)
            changes.push_back(frame);
        numbers += changed ? 2 : 1;
        REQUIRE(scene.context.randomState == RandomStateAfter(0, numbers));
    }
    CHECK(changes == std::vector<int> { 0, 201, 403 });
}

TEST_CASE("A list of one never runs the change equation, an empty one draws no number for a pick")
{
    Scene one({ { transform, u"d=0" }, { u"TransformChangeEquation", u"c=1+rand(9)" } });
    one.Draw();
    one.Draw();
    CHECK(one.context.randomState == RandomStateAfter(0, 1 + 2));
    CHECK(one.SourceOf(5, 5) == std::pair(20, 12));

    Scene none({ { transform, u"(none)" }, { u"TransformChangeEquation", u"c=1+rand(9)" } });
    none.Draw();
    none.Draw();
    CHECK(none.context.randomState == RandomStateAfter(0, 2));
    CHECK(none.SourceOf(25, 5) == std::pair(25, 5));

    // One that doesn't compile leaves c at 1: a new map, and a pick, in each frame.
    Scene bad({ { transform, u"d=|d=" }, { u"TransformChangeEquation", u"c=" } });
    bad.Draw();
    bad.Draw();
    CHECK(bad.context.randomState == RandomStateAfter(0, 4));
    CHECK(bad.SourceOf(25, 15) == std::pair(25, 15));
}

TEST_CASE("Scroll, zoom and rotation move the picture in each frame")
{
    Scene scroll({ { transform, u"" }, { u"ScrollEquation", u"x=.1;y=-.125" } });
    scroll.Draw();
    CHECK(scroll.SourceOf(20, 12) == std::pair(20 - 4, 12 - 3));
    Scene wrapped({ { transform, u"" }, { u"ScrollEquation", u"x=.5" } });
    wrapped.Draw();
    CHECK(wrapped.SourceOf(10, 15) == std::pair(30, 16)); // the row below goes on there
    Scene clipped(
        { { transform, u"" }, { u"ScrollEquation", u"x=.5" }, { u"ClipAtBorders", u"Yes" } });
    clipped.Draw();
    CHECK(clipped.SourceOf(10, 15) == std::pair(0, 0));

    Scene zoom({ { transform, u"" }, { u"ZoomEquation", u"x=.5;y=1" } });
    zoom.Draw();
    CHECK(zoom.SourceOf(28, 5) == std::pair(24, 12));
    Scene over({ { transform, u"" }, { u"ZoomEquation", u"x=2" } });
    over.Draw();
    CHECK(over.SourceOf(28, 12) == std::pair(12, 12));
    Scene turned({ { transform, u"" }, { u"RotateEquation", u"r=3.14159265358979/2" } });
    turned.Draw();
    CHECK(turned.SourceOf(20, 16) == std::pair(16, 12));

    // A zoom that fades away ends without one, in single precision.
    Scene faded({ { transform, u"" }, { u"ZoomEquation", u"x=10^-9" } });
    faded.Draw();
    CHECK(faded.SourceOf(38, 12) == std::pair(38, 12));
}

TEST_CASE("Colours fade and add, saturate on impacts, and stay with bad equations")
{
    constexpr auto fade = u"ColorFadeEquation";
    constexpr auto add = u"ColorAddEquation";
    Scene still({ { transform, u"" }, { fade, u"Slow Fade" } });
    CHECK(still.DrawGrey() == 0x007F7F7F); // 160 * 204 >> 8
    Scene bad({ { transform, u"" }, { fade, u"r=" }, { add, u"r=" } });
    CHECK(bad.DrawGrey() == 0x007F7F7F);
    for (const auto& [preset, pixel] : { std::pair(u"White Impact Flash", 0x00FFFFFFu),
             std::pair(u"Black Impact Flash", 0u), std::pair(u"Red Impact Flash", 0x00FF7F7Fu) }) {
        Scene flash({ { transform, u"" }, { fade, u"Slow Fade" }, { add, preset } });
        flash.audio.values[VisAudioValueLevel] = 100;
        CHECK(flash.DrawGrey() == 0x007F7F7F);
        flash.audio.values[VisAudioValueLevel] = 101;
        CHECK(flash.DrawGrey() == pixel);
    }
    Scene beat({ { transform, u"" }, { fade, u"b=beat" }, { add, u"g=-beat/16" } });
    CHECK(beat.DrawGrey() == 0x007F7F00);
    beat.audio.values[VisAudioValueBeat] = 7; // any beat is 1.0
    CHECK(beat.DrawGrey() == 0x007F6F7F);
}

TEST_CASE("All equations of a Super Transform share beat and impact, and only those")
{
    Scene scene({ { transform, u"" }, { u"ScrollEquation", u"beat=.5;t=.25;x=t/t-1" },
        { u"ColorFadeEquation", u"b=1" }, { u"ColorAddEquation", u"b=beat;g=t" } });
    CHECK(scene.DrawGrey() == 0x007F7FFF);
    scene.component.SetRect({ 0, 0, 40, 24 }); // and again after a Prepare
    CHECK(scene.DrawGrey() == 0x007F7FFF);
}

TEST_CASE("The frame is repaired, and a buffer of another size is refused with one flip")
{
    Scene scene({ { transform, u"" } });
    scene.Draw();
    CHECK(PixelAt(scene.buffer, 0, 0) == PixelAt(scene.buffer, 1, 1));
    CHECK(PixelAt(scene.buffer, 39, 12) == PixelAt(scene.buffer, 38, 12));
    const uint32_t* before = scene.buffer.GetBits(-1);
    scene.component.SetRect({ 0, 0, 41, 24 });
    CHECK(scene.Draw() == -1);
    CHECK(scene.buffer.GetBits(0) == before);
    CDibBuffer none;
    CHECK(scene.component.Draw(none, scene.audio) == -1);
}

TEST_CASE("Any number in a Super Transform, in a picture of any size, is harmless")
{
    for (const OQChar* value : { u"10^300", u"-10^300", u"log(-1)", u"2147483647/12",
             u"-2147483648/32", u"65535/204", u"rand(10^9)" }) {
        const OQString all = OQString(u"x=") + value + u";y=x;r=x;g=x;b=x;d=x;c=x";
        const OQString transforms = all + u"|d=d";
        for (const auto& [width, height] : { std::pair(1, 1), std::pair(5, 5), std::pair(7, 3),
                 std::pair(3, 7), std::pair(40, 24) }) {
            for (const OQChar* clip : { u"0", u"1" }) {
                Scene scene(
                    { { transform, transforms.GetText() }, { u"ScrollEquation", all.GetText() },
                        { u"ZoomEquation", all.GetText() }, { u"RotateEquation", all.GetText() },
                        { u"ColorFadeEquation", all.GetText() },
                        { u"ColorAddEquation", all.GetText() },
                        { u"TransformChangeEquation", all.GetText() }, { u"ClipAtBorders", clip } },
                    width, height);
                for (int i = 0; i < 3; ++i)
                    CHECK(scene.Draw() == 0);
            }
        }
    }
}

TEST_CASE("A super map that a draw may not cost waits, and an old one stays in its place")
{
    Scene scene({ { transform, u"d=0|d=0" }, { u"TransformChangeEquation", u"c=1" } });
    const int64_t area = 40 * 24;
    const int64_t pass = area * VisLimits::superTransformPixelWork;
    CMathEvaluator equation;
    equation.SetEquation(u"d=0");
    const int64_t fill = 3 * VisLimits::compileCharacterWork
        + area * (VisLimits::polarMapEntryWork + equation.GetWork());
    const int64_t polars = 13 * 40 * VisLimits::mapEntryWork;
    // Of the colour and the change equation.
    const int64_t prepare = (15 + 3) * VisLimits::compileCharacterWork;
    const int64_t change = equation.GetWork(); // of "c=1", which has the same steps

    scene.context.workLeft = pass + prepare + change + fill + polars - 1;
    CHECK(scene.Draw() == -1);
    CHECK(PixelAt(scene.buffer, 9, 9) == 0x0909);
    // Now it is prepared.
    scene.context.workLeft = pass + change + fill + polars + 1000;
    CHECK(scene.Draw() == 0);
    CHECK(scene.SourceOf(9, 9) == std::pair(20, 12));

    // The next one, which needs no new polar coordinates, may just not be built.
    scene.context.workLeft = pass + change + fill - 1;
    CHECK(scene.Draw() == 0);
    CHECK(scene.SourceOf(9, 9) == std::pair(20, 12));
    scene.context.workLeft = pass - 1;
    CHECK(scene.Draw() == -1);
    CHECK(PixelAt(scene.buffer, 9, 9) == 0x0909);
}
