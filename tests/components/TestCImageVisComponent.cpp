#include "ComponentScene.h"
#include "components/CImageVisComponent.h"
#include "engine2d/CVisPropertyList.h"
#include "engine2d/VisLimits.h"
#include "foundation/OQString.h"

#include <doctest/doctest.h>

#include <utility>
#include <vector>

namespace {

constexpr uint32_t red = 0x00FF0000;
constexpr uint32_t green = 0x0000FF00;
constexpr uint32_t blue = 0x000000FF;

struct Scene : ComponentScene<CImageVisComponent, 0x00555555>
{
    explicit Scene(Rows rows, int32_t width = 40, int32_t height = 20)
        : ComponentScene({}, rows, width, height)
    {
    }

    // The pixel at the centre.
    uint32_t Draw()
    {
        ComponentScene::Draw();
        return MiddlePixel();
    }
};

constexpr uint32_t background = Scene::background;

// A file with a picture of one colour, 0x00RRGGBB.
struct PictureFile
{
    PictureFile(const char* name, uint32_t pixel, int32_t width = 10, int32_t height = 10)
        : file(name, "")
    {
        Write(pixel, width, height);
    }

    void Write(uint32_t pixel, int32_t width = 10, int32_t height = 10) const
    {
        CDibBuffer picture;
        picture.MakeImages(width, height);
        FillBuffer(picture, pixel);
        REQUIRE(picture.GetImage(0)->SavePng(Path().GetText(), true));
    }

    OQString Path() const { return OQString::FromUtf8(file.Path()); }

    TestFile file;
};

}

TEST_CASE("Rows come in their order with their defaults")
{
    CImageVisComponent image;
    CVisPropertyList saved;
    image.SaveProperties(saved);
    const std::pair<const OQChar*, const OQChar*> expected[]
        = { { u"ImageFile", u"COVER_ART" }, { u"RenderDelayMilliseconds", u"0" },
              { u"RenderDuration", u"0" }, { u"MainRectangle", u"0;0;1;1" },
              { u"MaintainAspectRatio", u"1" }, { u"ImageChangeEquation", u"" } };
    REQUIRE(saved.GetCount() == 6);
    for (int i = 0; i < 6; ++i) {
        CHECK(saved[i].Name == expected[i].first);
        CHECK(saved[i].Value == expected[i].second);
        CHECK(saved[i].Kind == (i == 3 || i == 4 ? 0 : 1));
    }
}

TEST_CASE("The equation's number from 0 to below 1 runs through the list, and a negative one hides")
{
    const PictureFile a("list-red.png", red);
    const PictureFile b("list-green.png", green);
    const PictureFile c("list-blue.png", blue);
    const OQString list = a.Path() + u"|" + b.Path() + u"|" + c.Path();
    const std::pair<const OQChar*, uint32_t> cases[] = { { u"", red }, { u"i=0", red },
        { u"i=.33", red }, { u"i=.34", green }, { u"i=.67", blue }, { u"i=.9999", blue },
        { u"i=1", red }, { u"i=1.4", green }, { u"i=-.0001", background },
        { u"i=-pow(10,99)", background }, { u"i=pow(10,8)+1", red }, // 300000000 in floats
        { u"i=pow(10,99)", background }, // out of range: -2147483648 % 3 is -2, no entry
        { u"i=log(-1)", background }, { u"i=(broken", red } };
    for (const auto& [equation, pixel] : cases) {
        INFO(OQString(equation).ToUtf8());
        Scene scene({ { u"ImageFile", list }, { u"ImageChangeEquation", equation } });
        CHECK(scene.Draw() == pixel);
        CHECK(scene.Draw() == pixel);
    }
    Scene single(
        { { u"ImageFile", b.Path() }, { u"ImageChangeEquation", u"i=pow(10,99)*beat+17.3" } });
    CHECK(single.Draw() == green);
    single.audio.values[VisAudioValueBeat] = 1;
    CHECK(single.Draw() == green); // any number modulo 1
    Scene none({ { u"ImageFile", u"" }, { u"ImageChangeEquation", u"i=.5" } });
    CHECK(none.Draw() == background);
}

TEST_CASE("Pictures are swapped by beat and impact, and the script's own variables go on")
{
    const PictureFile a("beat-red.png", red);
    const PictureFile b("beat-green.png", green);
    const OQString list = a.Path() + u"|" + b.Path();
    Scene beat({ { u"ImageFile", list }, { u"ImageChangeEquation", u"i=if(beat,.5,impact/-1)" } });
    CHECK(beat.Draw() == red);
    beat.audio.values[VisAudioValueBeat] = 1;
    CHECK(beat.Draw() == green);
    beat.audio.values[VisAudioValueBeat] = 0;
    beat.audio.values[VisAudioValueLevel] = 101;
    CHECK(beat.Draw() == background);

    Scene turns({ { u"ImageFile", list }, { u"ImageChangeEquation", u"t=t+.5;i=t" } });
    CHECK(turns.Draw() == green);
    CHECK(turns.Draw() == red);
    turns.audio.values[VisAudioValueChange] = 1; // compiles anew
    CHECK(turns.Draw() == green);
    CHECK(turns.Draw() == red);
}

TEST_CASE("A picture fills its rectangle or keeps its shape in the middle of it, and is clipped")
{
    const PictureFile square("shape-red.png", red);

    const struct
    {
        const OQChar* rectangle;
        const OQChar* keepShape;
        OQRect drawn; // of 40 x 20
    } cases[] = {
        { u"0;0;1;1", u"Yes", { 10, 0, 30, 20 } }, { u"Full Window", u"No", { 0, 0, 40, 20 } },
        { u"0.25;0.5;0.99;1", u"0", { 10, 10, 39, 20 } }, { u"Left Half", u"1", { 0, 0, 20, 20 } },
        { u"0;0.5;1;1", u"1", { 15, 10, 25, 20 } },
        { u"-1;-1;1;1", u"1", { 0, 0, 20, 20 } }, // 80 x 40: the square from -20 to 20
        { u"-0.5;-0.5;0.25;0.25", u"0", { 0, 0, 10, 5 } },
        { u"-50000000;-1e8;50000000;1e8", u"0", { 0, 0, 40, 20 } }, // nearly 2^31 pixels each way
        { u"-1e30;-1e30;1e30;1e30", u"0", {} }, // all four are -2^31
        { u"-1000000;-1000000;1000000;1000000", u"1", { 0, 0, 40, 20 } }, { u"1;1;0;0", u"0", {} },
        { u"1;0;0;1", u"1", {} }, { u"0.5;0;0.5;1", u"1", {} }, { u"1;0;2;1", u"0", {} },
        { u"0;0;0.03;1", u"1", { 0, 9, 1, 10 } }, // 1 x 20: rounded down to the upper middle row
    };

    for (const auto& c : cases) {
        INFO(OQString(c.rectangle).ToUtf8());
        Scene scene({ { u"ImageFile", square.Path() }, { u"MainRectangle", c.rectangle },
            { u"MaintainAspectRatio", c.keepShape } });
        scene.Draw();
        const OQRect drawn = scene.PaintedArea();
        CHECK(drawn.left == c.drawn.left);
        CHECK(drawn.top == c.drawn.top);
        CHECK(drawn.right == c.drawn.right);
        CHECK(drawn.bottom == c.drawn.bottom);
    }
    for (const OQSize size : { OQSize { 1, 1 }, OQSize { 5, 5 }, OQSize { 7, 3 } }) {
        Scene tiny({ { u"ImageFile", square.Path() } }, size.cx, size.cy);
        CHECK(tiny.Draw() == red);
    }
}

TEST_CASE("The cover of another track is shown once it is told, from the start of the list")
{
    const PictureFile cover("track-cover.png", red);
    const PictureFile other("track-other.png", blue);
    Scene scene({ { u"ImageFile", u"COVER_ART|" + other.Path() } });
    scene.audio.coverFile = cover.Path().View();
    CHECK(scene.Draw() == red);
    cover.Write(green);
    CHECK(scene.Draw() == red); // loaded once
    scene.audio.values[VisAudioValueChange] = 1;
    CHECK(scene.Draw() == green);
    scene.audio.values[VisAudioValueChange] = 0;
    cover.Write(blue);
    scene.component.Invalidate();
    CHECK(scene.Draw() == blue);
    scene.component.SetRect({ 0, 0, 40, 10 });
    scene.buffer.MakeImages(40, 10);
    scene.Draw();
    CHECK(scene.PaintedArea().Width() == 10);

    // The default picture stands in for what isn't there; what is there and isn't a picture, or a
    // URL, isn't drawn.
    const TestFile broken("broken.png", "no picture");
    scene.audio.values[VisAudioValueChange] = 1;
    scene.audio.coverFile = u"/nowhere/at all.png";
    scene.Draw();
    CHECK(scene.PaintedArea().Width() > 0);
    for (const OQString& path :
        { OQString::FromUtf8(broken.Path()), OQString(u"https://example.com/cover.png") }) {
        scene.audio.coverFile = path.View();
        CHECK(scene.Draw() == background);
    }
}

TEST_CASE("A list that an equation swaps each frame is loaded once if its pictures are small")
{
    const PictureFile a("kept-red.png", red);
    const PictureFile b("kept-green.png", green);
    const OQString list = a.Path() + u"|" + b.Path() + u"|nowhere.png";
    Scene scene({ { u"ImageFile", list }, { u"ImageChangeEquation", u"t=t+.5;i=t/1.5" } });
    scene.Draw();
    scene.Draw();
    scene.Draw();
    scene.context.workLeft = VisLimits::pictureLoadWork / 2;
    CHECK(scene.Draw() == green);
    CHECK(scene.Draw() != background); // the default picture
    CHECK(scene.Draw() == red);

    // The first to go is the one that wasn't drawn for the longest time.
    OQString many = list;
    for (int32_t i = 3; i <= VisLimits::listPicturesKept; ++i)
        many += u"|" + a.Path();
    Scene longer({ { u"ImageFile", many }, { u"ImageChangeEquation", u"t=t+1;i=(t-.5)/9" } });
    for (int32_t i = 0; i < VisLimits::listPicturesKept; ++i)
        longer.Draw();
    longer.context.workLeft = VisLimits::pictureLoadWork / 2;
    CHECK(longer.Draw() == background);
}

TEST_CASE("What is seen of the pictures counts as what the script keeps")
{
    const auto kept = [](const OQChar* rectangle, const OQChar* list, int32_t side) {
        return Scene({ { u"ImageFile", list }, { u"MainRectangle", rectangle } }, side, side)
            .component.KeptPixels();
    };
    CHECK(kept(u"0;0;1;1", u"a", 50) == 50 * 50);
    CHECK(kept(u"0;0;1;1", u"", 50) == 0);
    CHECK(kept(u"-9999999;-1;9999999;7", u"a", 50) == 50 * 50);
    CHECK(kept(u"-1e30;-1e30;1e30;1e30", u"a", 50) == 0);
    CHECK(kept(u"0.5;0;1;1", u"a|b|c", 50) == 3 * 25 * 50);
    CHECK(kept(u"0;0;1;1", u"a|b|c|d|e|f|g|h|i", 50) == 8 * 50 * 50);
    CHECK(kept(u"0;0;1;1", u"a|b|c|d|e|f|g|h|i", 2048) == 2 * 2048 * 2048);
    CHECK(kept(u"0;0;1;1", u"a|b|c|d|e|f|g|h|i", 4000) == 4000 * 4000);
    CHECK(kept(u"1;1;0;0", u"a", 50) == 0);
    CHECK(kept(u"2;0;1;1", u"a", 50) == 0);
}

TEST_CASE("What a draw may not cost is left to a later one")
{
    const PictureFile a("work-red.png", red);
    Scene scene({ { u"ImageFile", a.Path() }, { u"ImageChangeEquation", u"i=0" } });
    OQEngineContext& context = scene.context;
    for (const int64_t work : { int64_t { 0 }, VisLimits::compileCharacterWork * 3 + 50,
             VisLimits::pictureLoadWork + 10 }) {
        context.workLeft = work;
        CHECK(scene.Draw() == background); // not compiled, not loaded, not drawn
    }
    context.workLeft = VisLimits::blendPixelWork * 20 * 20 + 100;
    CHECK(scene.Draw() == red);
}

TEST_CASE("A list of a million names is cut, and any text in a row is harmless")
{
    const PictureFile a("first-red.png", red);
    OQString names = u"|";
    for (int i = 0; i < 20; ++i)
        names += names;
    Scene scene({ { u"ImageFile", a.Path() + names }, { u"ImageChangeEquation", u"i=.0002" } });
    CHECK(scene.Draw() == red); // of 4096, not of a million
    CHECK(scene.component.KeptPixels() == 8 * 40 * 20);

    for (const OQChar* text : { u"2147483647", u"-99999999999", u"nan", u"-1e30", u"|", u"||||" }) {
        Scene odd({ { u"ImageFile", text }, { u"RenderDelayMilliseconds", text },
            { u"RenderDuration", text }, { u"MainRectangle", OQString(u"nan;-1e30;1e30;") + text },
            { u"MaintainAspectRatio", text }, { u"ImageChangeEquation", text } });
        odd.Draw();
        odd.Draw();
    }
}
