#include "ComponentScene.h"
#include "components/COscilloscopeVisComponent.h"
#include "engine2d/VisLimits.h"
#include "foundation/OQString.h"

#include <doctest/doctest.h>

#include <tuple>
#include <utility>

namespace {

using Box = std::tuple<int32_t, int32_t, int32_t, int32_t>; // left, top, right, bottom; included

constexpr uint32_t blue = 0x0000FF;

// In a picture of 40 x 20 a full swing is 10 pixels, and every sample is half a swing.
struct Scene : ComponentScene<COscilloscopeVisComponent>
{
    explicit Scene(Rows rows, int32_t width = 40, int32_t height = 20)
        : ComponentScene({ { u"Gradient", u"{1, 1} [[0x0000FF]]" }, { u"DrawStyle", u"Line" },
                             { u"LineEquation", u"Across Middle" }, { u"MaxHeight", u"0.5" } },
            rows, width, height)
    {
        SetWave(64, 64);
    }

    void SetWave(int8_t left, int8_t right)
    {
        std::fill_n(audio.block.waveform[0], 1024, left);
        std::fill_n(audio.block.waveform[1], 1024, right);
    }

    // Of what a frame paints.
    Box Painted()
    {
        Draw();
        const OQRect area = PaintedArea();
        return { area.left, area.top, area.right - 1, area.bottom - 1 };
    }
};

constexpr uint32_t background = Scene::background;

const Box nothing { 0, 0, -1, -1 };

}

TEST_CASE("The wave of a level line runs above it, 2 pixels wide and 4 inside the picture")
{
    Scene line({});
    CHECK(line.Painted() == Box { 4, 5, 37, 5 }); // 64 * 10 / 128 above row 10
    CHECK(line.Pixel(20, 5) == blue); // alpha 0
    CHECK(Scene({ { u"DrawStyle", u"1" } }).Painted() == Box { 4, 5, 37, 10 });
    CHECK(Scene({ { u"DrawStyle", u"2" } }).Painted() == Box { 4, 5, 37, 15 });
    CHECK(Scene({ { u"DrawStyle", u"3" } }).Painted() == Box { 4, 5, 37, 15 });
    // Rows 0 and 19 come in as rows 4 and 16.
    CHECK(Scene({ { u"LineEquation", u"x1=0;y1=0;x2=1;y2=0;" } }).Painted() == Box { 4, 4, 37, 4 });
    CHECK(Scene({ { u"LineEquation", u"x1=0;y1=.95;x2=1;y2=.95;" }, { u"MaxHeight", u"0" } })
              .Painted()
        == Box { 4, 16, 37, 16 });
}

TEST_CASE("A line to the left turns the wave over, and the absolute style turns it back")
{
    const OQChar* leftward = u"x1=1;y1=.5;x2=0;y2=.5;";
    CHECK(std::get<1>(Scene({ { u"LineEquation", leftward } }).Painted()) == 15);
    CHECK(std::get<1>(
              Scene({ { u"LineEquation", leftward }, { u"DrawStyle", u"ABS (line)" } }).Painted())
        == 5);
    Scene low({ { u"DrawStyle", u"5" } });
    low.SetWave(-64, -64);
    CHECK(low.Painted() == Box { 4, 5, 37, 10 });
}

TEST_CASE("An upright line swings to the right, a slanted one at a right angle to itself")
{
    CHECK(Scene({ { u"LineEquation", u"Top-to-Bottom" } }).Painted() == Box { 25, 4, 26, 16 });
    // From (0, 0) to (20, 20), cut to 19: 45 degrees, so that a swing of 5 is 4 and 4 pixels
    // (3.54 + 0.5). Steps end at (18, 18).
    Scene slanted({ { u"LineEquation", u"x1=0;y1=0;x2=.5;y2=1;" } });
    slanted.Draw();
    CHECK(slanted.Pixel(14, 6) == blue);
    CHECK(slanted.Pixel(22, 14) == blue);
    CHECK(slanted.Pixel(23, 14) == blue);
    CHECK(slanted.Pixel(24, 15) == background);
}

TEST_CASE("Polar ends lie counter-clockwise round the middle in half diagonals and a pixel")
{
    // Half a diagonal is 22.36 + 1, of which half is 11.68: from (32, 10) to (8, 10), whose own
    // pixel is no step.
    Scene spin({ { u"LineEquation", u"Middle Spin" } });
    spin.SetWave(0, 0);
    CHECK(spin.Painted() == Box { 9, 10, 33, 10 });
    Scene up({ { u"LineEquation", u"r1=0;d1=0;r2=.25;d2=.2" } }); // 4.67 rows up, 10.5 to 5.8
    up.SetWave(0, 0);
    CHECK(up.Painted() == Box { 20, 6, 21, 10 });
}

TEST_CASE("The letters x and y anywhere, in lower case, make the ends plain")
{
    CHECK(Scene({ { u"LineEquation", u"X1=0;Y1=.5;X2=1;Y2=.5" } }).Painted() == nothing);
    CHECK(Scene({ { u"LineEquation", u"r1=0;d1=0;r2=.25;d2=.2;ya=exp(1)" } }).Painted() == nothing);
    CHECK(Scene({ { u"LineEquation", u"r1=0;d1=0;r2=.25;d2=.2;ya=1" } }).Painted() != nothing);
}

TEST_CASE("The wave goes along the whole line: what is cut off takes its part along")
{
    // From column -39, as -39.5 is truncated, to 40: column 0 reads sample 505.
    Scene half({ { u"LineEquation", u"x1=-1;y1=.5;x2=1;y2=.5;" } });
    for (size_t i = 0; i < 505; ++i)
        half.audio.block.waveform[0][i] = half.audio.block.waveform[1][i] = -64;
    CHECK(half.Painted() == Box { 4, 5, 37, 5 });
    // Column 20 of 40 reads sample 512; a line style run reaches from the swing before.
    Scene whole({});
    std::fill_n(whole.audio.block.waveform[0], 512, int8_t { -64 });
    std::fill_n(whole.audio.block.waveform[1], 512, int8_t { -64 });
    whole.Draw();
    CHECK(whole.Pixel(19, 15) == blue);
    CHECK(whole.Pixel(19, 10) == background);
    CHECK(whole.Pixel(20, 10) == blue);
    CHECK(whole.Pixel(21, 5) == blue);
    CHECK(whole.Pixel(22, 10) == background);
}

TEST_CASE("Channels are the left one, the right one, or their truncated middle")
{
    const auto row = [](const OQChar* channel) {
        Scene scene({ { u"Channel", channel } });
        scene.SetWave(-128, 127);
        return std::get<1>(scene.Painted());
    };
    CHECK(row(u"Left") == 16); // 10 down, kept inside
    CHECK(row(u"Right") == 4); // 9 up
    CHECK(row(u"Center") == 10); // -1 / 2 is 0
}

TEST_CASE("The gradient lies across the wave by the fill style, and moves each frame")
{
    const auto column = [](const OQChar* fill) {
        Scene scene({ { u"Gradient", u"{2, 1} [[0x000000,0x0000F0]]" }, { u"FillStyle", fill },
            { u"DrawStyle", u"1" } });
        scene.Draw();
        return std::pair { scene.Pixel(20, 5), scene.Pixel(20, 10) }; // at the tip, on the line
    };
    // Entry 5 of 11 is 240 * 5 / 11.
    CHECK(column(u"0") == std::pair { 109u, 109u });
    CHECK(column(u"1") == std::pair { 0u, 109u });
    CHECK(column(u"2") == std::pair { 109u, 0u });
    CHECK(column(u"77") == column(u"1"));

    Scene falling({ { u"Gradient", u"{2, 1} [[0x000000,0x0000F0]]" } });
    std::fill_n(falling.audio.block.waveform[0] + 512, 512, int8_t { 0 });
    std::fill_n(falling.audio.block.waveform[1] + 512, 512, int8_t { 0 });
    falling.Draw();
    CHECK(falling.Pixel(20, 7) == 0); // the run falls from 5 to 0: entries below 0 are entry 0

    Scene moving({ { u"Gradient", u"{1, 2} [[0x000000][0x00C800]]" } });
    for (uint32_t frame = 1; frame <= 100; ++frame) {
        moving.Draw();
        const uint32_t green = moving.Pixel(20, 5) >> 8;
        CHECK((green == frame || green == frame - 1));
    }
    moving.Draw();
    moving.component.SetRect({ 0, 0, 1, 1 }); // goes on through a resize
    moving.Draw();
    CHECK(moving.Pixel(20, 5) > 0x6000);
    for (int i = 0; i < 100; ++i)
        moving.Draw();
    CHECK(moving.Pixel(20, 5) < 0x0500);
}

TEST_CASE("Lines without length, beside the picture, and of bad equations draw nothing")
{
    for (const OQChar* equation :
        { u"x1=.5;y1=.5;x2=.5;y2=.5", u"x1=0;y1=", u"", u"x1=0;y1=-1;x2=1;y2=-1",
            u"x1=0;y1=2;x2=1;y2=2", u"x1=-1;y1=0;x2=-1;y2=1", u"x1=2;y1=0;x2=2;y2=1",
            u"x1=-1;y1=.5;x2=.5;y2=-1", u"x1=-2;y1=.5;x2=-1;y2=.5", u"x1=.5;y1=3;x2=3;y2=.5" }) {
        CAPTURE(OQString(equation).ToUtf8());
        CHECK(Scene({ { u"LineEquation", equation } }).Painted() == nothing);
    }
}

TEST_CASE("Ends and heights anywhere, on a picture of any size, cost no more than they may")
{
    const OQChar* const values[] = { u"10^300", u"-10^300", u"log(-1)", u"2147483647/w",
        u"-2147483648/w", u"0", u".5", u"1" };
    const std::pair<int32_t, int32_t> sizes[] = { { 1, 1 }, { 5, 5 }, { 7, 3 }, { 40, 20 } };
    for (const auto& [width, height] : sizes) {
        for (const OQChar* first : values) {
            for (const OQChar* second : values) {
                for (const OQChar* form :
                    { u"x1=a;y1=b;x2=b;y2=a", u"r1=a;d1=b;r2=b;d2=a", u"x1=a;y1=.4;x2=.6;y2=b" }) {
                    const OQString equation = u"w=" + OQString(width > 9 ? u"40" : u"5") + u";a="
                        + first + u";b=" + second + u";" + form;
                    for (const OQChar* swing : { u".5", u"-1e30", u"1e9", u"1e38" }) {
                        Scene scene({ { u"LineEquation", equation.GetText() },
                                        { u"MaxHeight", swing }, { u"DrawStyle", u"2" } },
                            width, height);
                        scene.context.workLeft = 1 << 20;
                        scene.Draw();
                        CHECK(scene.context.workLeft >= 0);
                    }
                }
            }
        }
    }
}

TEST_CASE("A swing of thousands of pictures is drawn as far as its work may go")
{
    Scene scene({ { u"MaxHeight", u"10000" }, { u"DrawStyle", u"2" } });
    scene.context.workLeft = int64_t { 1 } << 26;
    // A run has 200001 pixels, whose colours are worked out one by one: 4 of them, of which the
    // first 3 go as column 4.
    CHECK(scene.Painted() == Box { 4, 4, 5, 16 });
    CHECK(scene.context.workLeft < 200001 * (VisLimits::scopePixelWork + 64) + 64);
    Scene poor({});
    poor.context.workLeft = 100; // not even the equation is compiled
    CHECK(poor.Painted() == nothing);
    poor.context.workLeft = 1 << 20;
    CHECK(poor.Painted() == Box { 4, 5, 37, 5 });
}

TEST_CASE("A random look draws its picks in the order of the line, fill, draw style and gradient")
{
    OQEngineContext context;
    const OQEngineContextScope engine(&context);
    COscilloscopeVisComponent scope;
    CVisPropertyList list;
    list.AddRow(u"Channel", u"2");
    list.AddRow(u"MaxHeight", u"7");
    scope.LoadProperties(&list);
    context.randomState = 1; // 41, 18467, 6334, 26500
    scope.Randomize();
    CVisPropertyList saved;
    saved.friendly = true;
    scope.SaveProperties(saved);
    CHECK(saved[4].Value == u"Center");
    CHECK(saved[5].Value == u"0.15");
    OQEngineContext expected;
    const OQEngineContextScope expectedScope(&expected);
    for (int i = 0; i < 4; ++i)
        OQRand();
    CHECK(context.randomState == expected.randomState);
}

TEST_CASE("The oscilloscope's rows come in their order with the defaults")
{
    OQEngineContext context;
    context.virtualClock = true;
    context.virtualNanoseconds = 77'000'000;
    const OQEngineContextScope engine(&context);
    COscilloscopeVisComponent scope;
    CHECK(context.randomState == 77); // the default gradient seeds
    CVisPropertyList saved;
    scope.SaveProperties(saved);
    const std::pair<const OQChar*, const OQChar*> expected[] = {
        { u"LineEquation", u"r1=0+t;d1=.5;r2=.5+t;d2=.5;t=t+0.01" },
        { u"Gradient",
            u"{2, 4} "
            u"[[0x0000FF,0x000000][0x00FF00,0x000000][0xFF0000,0x000000][0x0000FF,0x000000]]" },
        { u"FillStyle", u"1" }, { u"DrawStyle", u"2" }, { u"Channel", u"0" },
        { u"MaxHeight", u"0.15" }
    };
    REQUIRE(saved.GetCount() == 6);
    for (int i = 0; i < 6; ++i) {
        CHECK(saved[i].Name == expected[i].first);
        CHECK(saved[i].Value == expected[i].second);
    }
}
