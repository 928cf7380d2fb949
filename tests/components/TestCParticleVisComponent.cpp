#include "ComponentScene.h"
#include "components/CDotFountainVisComponent.h"
#include "components/CParticleVisComponent.h"
#include "engine2d/CVisBufferHelper.h"
#include "engine2d/VisLimits.h"

#include <doctest/doctest.h>

#include <utility>
#include <vector>

namespace {

struct Scene : ComponentScene<CParticleVisComponent, 0xFF404040>
{
    explicit Scene(Rows rows, int32_t width = 40, int32_t height = 30)
        : ComponentScene({}, rows, width, height)
    {
        FillBuffer(buffer, background);
    }

    // Over what was drawn before. Of the middle, where discs without a distance lie.
    uint32_t Draw()
    {
        DrawOver();
        return MiddlePixel();
    }
};

constexpr uint32_t background = Scene::background;

std::vector<uint32_t> Pixels(IVisBuffer& buffer)
{
    OQSize size;
    buffer.GetSize(&size);
    return { buffer.GetBits(0), buffer.GetBits(0) + size.cx * size.cy };
}

// A picture after the discs that `draw` draws.
template <typename Draw>
std::vector<uint32_t> Drawn(Draw draw)
{
    CDibBuffer buffer;
    buffer.MakeImages(40, 30);
    FillBuffer(buffer, background);
    CVisBufferHelper picture(buffer);
    draw(picture);
    return Pixels(buffer);
}

}

TEST_CASE("The equations tell where, how large and in which colour, and red is the lowest byte")
{
    Scene scene({ { u"ParticleEquation", u"d=.5;r=.3;s=.2" },
        { u"ColorEquation", u"r=1;g=.5;b=.1" }, { u"BlendMode", u"Replace" } });
    scene.Draw();
    CHECK(Pixels(scene.buffer) == Drawn([](CVisBufferHelper& picture) {
        picture.DrawDisc(0.5f, 0.3f, 0.2f, 0x00197FFF, 0);
    }));

    const auto color = [](const OQChar* equation) {
        return Scene({ { u"ParticleEquation", u"s=.2" }, { u"ColorEquation", equation },
                         { u"BlendMode", u"0" } })
            .Draw();
    };
    CHECK(color(u"r=1.01;g=-.01;b=2") == 0x00FEFE01); // 257, -2 and 510
    CHECK(color(u"r=1e30;g=log(-1);b=-1e300") == 0);
    CHECK(color(u"r=;") == 0);
}

TEST_CASE("Each mode blends as told, and any other leaves the picture")
{
    const auto blended = [](const OQChar* mode) {
        return Scene({ { u"ParticleEquation", u"s=.2" }, { u"BlendMode", mode } }).Draw();
    };
    CHECK(blended(u"Add") == 0xFF4C4C4C); // by 12
    CHECK(blended(u"Subtract") == 0xFF343434);
    CHECK(blended(u"Average") == 0x7F262626);
    CHECK(blended(u"0") == 0x000C0C0C);
    for (const OQChar* none : { u"Multiply", u"4", u"-1", u"5", u"99999999999" })
        CHECK(blended(none) == background);
    CHECK(blended(u"nonsense") == 0x000C0C0C); // 0
}

TEST_CASE("Both equations hear beat and impact, and bad ones leave a disc of no size, or black")
{
    const Rows rows { { u"ParticleEquation", u"s=beat*.2" }, { u"ColorEquation", u"g=impact" },
        { u"BlendMode", u"0" } };
    Scene scene(rows);
    CHECK(scene.Draw() == background);
    scene.audio.values[VisAudioValueBeat] = 1;
    CHECK(scene.Draw() == 0);
    scene.audio.values[VisAudioValueLevel] = 101;
    CHECK(scene.Draw() == 0x00FF00);

    CHECK(Scene({ { u"ParticleEquation", u"s=1;;" } }).Draw() == background);
    CHECK(
        Scene({ { u"ParticleEquation", u"s=1" }, { u"ColorEquation", u"" } }).Draw() == background);
}

TEST_CASE("Variables go on through a new size, and only r, d and s start again with new rows")
{
    const Rows rows { { u"ParticleEquation", u"s=s+.1;t=t+1;r=if(t>1.5,.25,0);d=.5" },
        { u"ColorEquation", u"r=1" }, { u"BlendMode", u"0" } };
    Scene scene(rows);
    scene.Draw();
    scene.component.SetRect({ 0, 0, 40, 30 });
    FillBuffer(scene.buffer, background);
    scene.Draw();
    CHECK(Pixels(scene.buffer)
        == Drawn([](CVisBufferHelper& picture) { picture.DrawDisc(0.5f, 0.25f, 0.2f, 0xFF, 0); }));
    CVisPropertyList list;
    for (const auto& [name, value] : rows)
        list.AddRow(name, value);
    scene.component.LoadProperties(&list);
    FillBuffer(scene.buffer, background);
    scene.Draw();
    CHECK(Pixels(scene.buffer)
        == Drawn([](CVisBufferHelper& picture) { picture.DrawDisc(0.5f, 0.25f, 0.1f, 0xFF, 0); }));
}

TEST_CASE(
    "Rows come in their order with their defaults, and any result of any equation is harmless")
{
    CParticleVisComponent particle;
    CVisPropertyList saved;
    particle.SaveProperties(saved);
    const std::pair<const OQChar*, const OQChar*> expected[]
        = { { u"ParticleEquation",
                u"r=r+(cos(t)/50);d=abssin(t)/4;t=t+0.01;cs=(0.02)>(beat*0.15);s=(s-0.01)>cs" },
              { u"ColorEquation", u"r=.05;g=.05;b=.05;" }, { u"BlendMode", u"1" } };
    REQUIRE(saved.GetCount() == 3);
    for (int32_t i = 0; i < 3; ++i) {
        CHECK(saved[i].Name == expected[i].first);
        CHECK(saved[i].Value == expected[i].second);
    }

    for (const auto& [width, height] :
        { std::pair { 1, 1 }, std::pair { 5, 5 }, std::pair { 7, 3 }, std::pair { 40, 30 } }) {
        for (const OQChar* size : { u"s=.1", u"s=1e9", u"s=1e300", u"s=log(-1)", u"s=-1e300" }) {
            for (const OQChar* place : { u";d=1e9", u";d=1e300", u";d=log(-1)", u";r=1e300;d=1",
                     u";r=log(-1);d=.1", u";d=-1e300" }) {
                Scene scene(
                    { { u"ParticleEquation", (OQString(size) + place).GetText() } }, width, height);
                scene.Draw();
                scene.Draw();
            }
        }
    }
    Scene poor({ { u"ParticleEquation", u"s=.2" }, { u"ColorEquation", u"r=1" } });
    poor.context.workLeft = 7 * VisLimits::compileCharacterWork - 1;
    CHECK(poor.Draw() == background);
    poor.context.workLeft = VisLimits::workAtLeast;
    CHECK(poor.Draw() == 0xFF4040FF);
}

TEST_CASE("The fountain throws five discs on an impact, adds where they meet, and has no rows")
{
    CDotFountainVisComponent fountain;
    CDibBuffer buffer;
    TestAudio audio;
    audio.values[VisAudioValueLevel] = 100;
    for (const auto& [width, height] : { std::pair { 5, 5 }, std::pair { 201, 151 } }) {
        buffer.MakeImages(width, height);
        FillBuffer(buffer, background);
        fountain.Draw(buffer, audio);
        for (const uint32_t pixel : Pixels(buffer))
            REQUIRE(pixel == background);
    }
    audio.values[VisAudioValueLevel] = 101;
    fountain.Draw(buffer, audio);
    // 126.65 to the corner, 25.3 from the middle at (100.5, 75.5), radius 6.
    CHECK(PixelAt(buffer, 126, 76) == 0xFF727272);
    CHECK(PixelAt(buffer, 108, 52) == 0xFF727272); // + 7.8, - 24.1
    CHECK(PixelAt(buffer, 80, 91) == 0xFF727272); // - 20.5, + 14.9
    CHECK(PixelAt(buffer, 100, 75) == background);

    CVisPropertyList saved;
    fountain.SaveProperties(saved);
    CHECK(saved.GetCount() == 0);
    CVisRowInfoList rows;
    CHECK(fountain.DescribeRows(rows) == 0);
}
