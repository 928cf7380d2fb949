#include "ComponentScene.h"
#include "components/CSuperScopeVisComponent.h"
#include "components/SuperScopePresets.h"
#include "engine2d/VisLimits.h"
#include "foundation/OQString.h"

#include <doctest/doctest.h>

namespace {

constexpr uint32_t blue = 0x0000FF;

// In a picture of 41 x 21 the middle is (21, 11) and -1 to 1 are 42 columns and 22 rows.
struct Scene : ComponentScene<CSuperScopeVisComponent>
{
    explicit Scene(const OQChar* equation, const OQChar* gradient = u"{1, 1} [[0x0000FF]]",
        int32_t width = 41, int32_t height = 21)
        : ComponentScene(
            { { u"ScopeEquation", equation }, { u"Gradient", gradient } }, {}, width, height)
    {
    }

    int Painted()
    {
        Draw();
        return PaintedCount();
    }
};

constexpr uint32_t background = Scene::background;

}

TEST_CASE("Points run from 0 to below 1 and lie round the middle, joined by lines without alpha")
{
    Scene level(u"n=2|x=i*2-1;y=0");
    CHECK(level.Painted() == 22); // from (0, 11) to (21, 11)
    CHECK(level.Pixel(0, 11) == blue);
    CHECK(level.Pixel(21, 11) == blue);
    CHECK(Scene(u"n=2.9|x=i*2-1;y=0").Painted() == 22);

    // v is sample k * 1024 / n of the left wave: -1 is row 0, 127 / 128 row 21, outside.
    Scene wave(u"n=2|x=0;y=v");
    wave.audio.block.waveform[0][512] = -128;
    wave.audio.block.waveform[1][512] = 127;
    CHECK(wave.Painted() == 12);
    CHECK(wave.Pixel(21, 0) == blue);
    wave.audio.block.waveform[0][512] = 127;
    CHECK(wave.Painted() == 10);
    CHECK(wave.Pixel(21, 20) == blue);
    // Several points share a sample: only the last 4 of 4096 read sample 1023.
    Scene many(u"n=4096|x=i*2-1;y=v");
    many.audio.block.waveform[0][1023] = -128;
    many.Draw();
    CHECK(many.Pixel(40, 11) == blue);
    CHECK(many.Pixel(20, 0) == background);
}

TEST_CASE("Stages share their variables and run as points, beat, impact, frame")
{
    Scene order(u"n=2|x=i*2-1;y=if(equal(a,453),.5,0)|a=a*10+3|a=a*10+4|a=a*10+5|n=0");
    order.audio.values[VisAudioValueBeat] = 1;
    order.audio.values[VisAudioValueLevel] = 101;
    order.Draw();
    CHECK(order.Pixel(5, 11) == blue);
    order.Draw();
    CHECK(order.Pixel(5, 16) == blue); // 5.5 + 11

    Scene quiet(u"n=2|x=i*2-1;y=if(equal(a,3),.5,0)|a=3|a=4|a=5");
    quiet.audio.values[VisAudioValueLevel] = 100;
    quiet.Draw();
    quiet.Draw();
    CHECK(quiet.Pixel(5, 16) == blue);
    // "beat" and "impact" are names like others.
    Scene names(u"n=2|x=i*2-1;y=beat+impact");
    names.audio.values[VisAudioValueBeat] = 1;
    names.audio.values[VisAudioValueLevel] = 101;
    names.Draw();
    CHECK(names.Pixel(5, 11) == blue);
}

TEST_CASE("Without points the other stages run, and stages that don't compile do nothing")
{
    Scene later(u"n=1|x=i*2-1|n=n+1");
    CHECK(later.Painted() == 0);
    CHECK(later.Painted() == 22);
    CHECK(Scene(u"n=2+|x=i*2-1").Painted() == 0);
    CHECK(Scene(u"n=9|x=i*2-|n=9").Painted() == 1); // every point in the middle
    CHECK(Scene(u"n=2;|x=i*2-1; |n=9").Painted() == 1);
    CHECK(Scene(u"").Painted() == 0);
    CHECK(Scene(u"||n=2").Painted() == 0);
    CHECK(Scene(u"n=log(-1)|x=i").Painted() == 0);
    CHECK(Scene(u"n=10^300|x=i").Painted() == 0);
}

TEST_CASE("A load wipes the variables and begins the frames anew, a resize does not")
{
    const OQChar* counting = u"n=2|x=i*2-1;y=if(above(c,1),.5,0)|c=c+1";
    Scene scene(counting);
    scene.Draw();
    scene.Draw();
    scene.component.SetRect({ 0, 0, 7, 7 });
    scene.Draw();
    CHECK(scene.Pixel(5, 16) == blue);
    for (int i = 0; i < 3; ++i) {
        CVisPropertyList list;
        list.AddRow(u"ScopeEquation", counting);
        scene.component.LoadProperties(&list);
        scene.Draw();
        CHECK(scene.Pixel(5, 11) == blue);
    }
}

TEST_CASE("A frame has one colour, that of its number, and the gradient moves behind it")
{
    Scene frames(u"n=2|x=i*2-1;y=0", u"{2, 2} [[0x000000,0x0000FF][0x00C800,0x00C8FF]]");
    for (uint32_t frame = 0; frame < 199; ++frame) {
        frames.Draw();
        const uint32_t pixel = frames.Pixel(5, 11);
        CHECK((pixel >> 24) == 0);
        // Four products are truncated one by one: at most 3 below 255 * frame / 256 and 200 *
        // phase.
        CHECK((pixel & 0xFF) <= frame);
        CHECK((pixel & 0xFF) + 4 >= frame);
        CHECK((pixel >> 8) <= frame);
        CHECK((pixel >> 8) + 4 >= frame);
    }
    for (int frame = 199; frame < 256; ++frame)
        frames.Draw();
    CHECK((frames.Pixel(5, 11) & 0xFF) > 250);
    frames.Draw();
    CHECK((frames.Pixel(5, 11) & 0xFF) == 0); // entry 256 is entry 0
    CHECK((frames.Pixel(5, 11) >> 8) < 60); // and the phase began again before
}

TEST_CASE("So many points a frame are drawn, and as many as its work suffices for")
{
    // With the 65537th point the line would go down.
    Scene many(u"n=10^9|c=c+1;x=-.5;y=if(above(c,65536),1,-.5)");
    CHECK(many.Painted() == 1);
    CHECK(many.Pixel(10, 5) == blue);
    Scene most(u"n=65537|c=c+1;x=-.5;y=if(above(c,65535),1,-.5)");
    CHECK(most.Painted() == 16);

    Scene poor(u"n=1000|x=i*2-1;y=0|c=1");
    poor.context.workLeft = 30'000; // 23 characters, then 66 + 64 + 4 a point
    const int drawn = poor.Painted();
    CHECK(drawn > 4);
    CHECK(drawn < 12);
    CHECK(poor.context.workLeft >= 0);
    // What the first stage may not cost in one frame it may in another.
    Scene waiting(u"n=2|x=i*2-1");
    waiting.context.workLeft = VisLimits::compileCharacterWork * 11;
    CHECK(waiting.Painted() == 0);
    waiting.context.workLeft = 1 << 20;
    CHECK(waiting.Painted() == 22);
    // Far lines cost what can be seen of them.
    Scene far(u"n=1000|a=1-a;x=a*10^8;y=-.5");
    far.context.workLeft = 1 << 20;
    far.Draw();
    CHECK(far.context.workLeft > (1 << 19));
    CHECK(far.Pixel(40, 5) == blue);
}

TEST_CASE("Positions beyond all numbers, and pictures of any size, are harmless")
{
    for (const auto& [width, height] : { std::pair { 1, 1 }, { 5, 5 }, { 7, 3 }, { 41, 21 } }) {
        for (const OQChar* value :
            { u"10^300", u"-10^300", u"log(-1)", u"2^31/w", u"-2^31/w", u"2^127" }) {
            const OQString equation = OQString(u"w=21;n=9|a=1-a;x=if(a,") + value
                + u",y);y=if(a,.5," + value + u")||x=" + value;
            Scene scene(equation.GetText(), u"America", width, height);
            scene.audio.values[VisAudioValueBeat] = 1;
            for (int i = 0; i < 3; ++i)
                scene.Draw();
        }
    }
}

TEST_CASE("The scope's rows come in their order with the defaults, and each preset draws")
{
    CSuperScopeVisComponent scope;
    CVisPropertyList saved;
    saved.friendly = true;
    scope.SaveProperties(saved);
    REQUIRE(saved.GetCount() == 2);
    CHECK(saved[0].Name == u"ScopeEquation");
    CHECK(saved[0].Value == u"Funky Boxes");
    CHECK(saved[1].Name == u"Gradient");
    CHECK(SuperScopePresets().GetCount() == 7);
    for (const auto& preset : SuperScopePresets()) {
        Scene scene(preset.key.GetText());
        scene.audio.values[VisAudioValueBeat] = 1;
        scene.audio.values[VisAudioValueLevel] = 101;
        scene.Draw();
        CAPTURE(preset.key.ToUtf8());
        CHECK(scene.Painted() > 1);
    }
}
