#include "ComponentScene.h"
#include "components/CBlobOscilloscopeVisComponent.h"
#include "engine2d/VisLimits.h"
#include "foundation/OQString.h"

#include <doctest/doctest.h>

#include <utility>

namespace {

constexpr uint32_t blue = 0x0000FF;

// In a picture of 100 x 60 the base radius is 12 and the swing 20, round (50, 30).
struct Scene : ComponentScene<CBlobOscilloscopeVisComponent>
{
    explicit Scene(Rows rows, int32_t width = 100, int32_t height = 60)
        : ComponentScene({ { u"Gradient", u"{1, 1} [[0x0000FF]]" } }, rows, width, height)
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

TEST_CASE("Silence is a disc of the base radius, without alpha, that rays fill from one pixel on")
{
    Scene disc({});
    disc.Draw();
    CHECK(disc.Pixel(62, 30) == blue);
    CHECK(disc.Pixel(63, 30) == background);
    CHECK(disc.Pixel(50, 42) == blue);
    CHECK(disc.Pixel(50, 43) == background);
    CHECK(disc.Pixel(38, 30) == blue);
    CHECK(disc.Pixel(58, 38) == blue); // 12 * cos(45) = 8.49
    CHECK(disc.Pixel(59, 39) == background);
    CHECK(disc.Pixel(55, 30) == blue);
}

TEST_CASE("The left wave runs there and back round the blob, in single precision of the radii")
{
    // 4 * (20 + 12) rays; the second and the last one read sample 2 * 1023 / 128 = 15.
    Scene scene({});
    scene.audio.block.waveform[0][15] = 127;
    scene.audio.block.waveform[1][15] = -128;
    scene.Draw();
    // 31.84 pixels, the last at 32 in 2.8 degrees: 31.96 to the right, 1.57 down and up.
    CHECK(scene.Pixel(81, 31) == blue);
    CHECK(scene.Pixel(81, 28) == blue);
    CHECK(scene.Pixel(82, 31) == background);
    CHECK(scene.Pixel(63, 28) == background);

    Scene petals({});
    std::fill_n(petals.audio.block.waveform[0], 1024, int8_t { -128 });
    CHECK(petals.Painted() == 0);
    // The ray to the left reads the last sample or, as angles add up, the one before.
    petals.audio.block.waveform[0][1022] = petals.audio.block.waveform[0][1023] = 0;
    petals.Draw();
    CHECK(petals.Pixel(38, 30) == blue);
    CHECK(petals.Pixel(37, 30) == background);
    CHECK(petals.Pixel(50, 35) == background);
}

TEST_CASE("The gradient runs from the centre out, and its phase through a resize until a load")
{
    Scene scene({ { u"Gradient", u"{2, 1} [[0x000000,0x0000D0]]" }, { u"MaxDeltaRadius", u"0" } });
    scene.Draw();
    CHECK(scene.Pixel(51, 30) == 0x10); // entry 1 of 13: a later ray's second pixel
    CHECK(scene.Pixel(60, 30) == 0x90); // 208 * 9 / 13

    const OQChar* moving = u"{1, 2} [[0x000000][0x00C800]]";
    Scene frames({ { u"Gradient", moving } });
    for (int i = 0; i < 20; ++i)
        frames.Draw();
    frames.component.SetRect({ 0, 0, 9, 9 });
    frames.Draw();
    CHECK(frames.Pixel(60, 30) >= 0x1400);
    CVisPropertyList list;
    list.AddRow(u"Gradient", moving);
    frames.component.LoadProperties(&list);
    frames.Draw();
    CHECK(frames.Pixel(60, 30) <= 0x0100);
}

TEST_CASE("The centre is polar and hears the beat; outside the picture no ray begins")
{
    Scene right({ { u"LocationEquation", u"d=beat*.5;r=impact/4" }, { u"BaseRadius", u".05" },
        { u"MaxDeltaRadius", u"0" } });
    right.audio.values[VisAudioValueBeat] = 1;
    right.Draw(); // half of 58.31 + 1 to the right: 79.65
    CHECK(right.Pixel(84, 30) == blue);
    CHECK(right.Pixel(85, 30) == background);
    right.audio.values[VisAudioValueLevel] = 101;
    right.Draw(); // and up: (49, 0). The ray at 54 degrees ends at (51.94, 4.05)
    CHECK(right.Pixel(51, 4) == blue);
    CHECK(right.Pixel(79, 30) == background);
    for (const OQChar* equation :
        { u"d=2", u"d=10^300;r=.1", u"r=10^300", u"d=log(-1)", u"d=-10^18" })
        CHECK(Scene({ { u"LocationEquation", equation } }).Painted()
            == (equation == std::u16string_view(u"r=10^300") ? Scene({}).Painted() : 0));
    CHECK(Scene({ { u"LocationEquation", u"d=1;r=" } }).Painted() == Scene({}).Painted());
}

TEST_CASE("Radii of nothing, below nothing and beyond all numbers draw what they come to")
{
    CHECK(Scene({ { u"BaseRadius", u"0" }, { u"MaxDeltaRadius", u"0" } }).Painted() == 0);
    CHECK(Scene({ { u"BaseRadius", u"-1" }, { u"MaxDeltaRadius", u"0" } }).Painted() == 0);
    CHECK(Scene({ { u"BaseRadius", u"1e38" } }).Painted() == 0); // out of range: far below 0
    CHECK(Scene({ { u"BaseRadius", u"-1e38" }, { u"MaxDeltaRadius", u"1e38" } }).Painted() == 0);

    // A sum of 0 leaves one ray, longer than the table, whose one colour goes on.
    Scene single({ { u"BaseRadius", u".1" }, { u"MaxDeltaRadius", u"-.1" } });
    CHECK(single.Painted() == 10);
    single.audio.block.waveform[0][0] = -128;
    CHECK(single.Painted() == 20);
    CHECK(single.Pixel(70, 30) == blue);
    // A negative swing bends inward what others bend outward.
    Scene inward({ { u"BaseRadius", u".2" }, { u"MaxDeltaRadius", u"-.1" } });
    std::fill_n(inward.audio.block.waveform[0], 1024, int8_t { -128 });
    inward.Draw();
    CHECK(inward.Pixel(80, 30) == blue);
}

TEST_CASE("Rays without end stop at so many pixels a frame, and at the work of a frame")
{
    Scene huge({ { u"BaseRadius", u"1e7" } }); // 4000000000 rays
    huge.context.workLeft = int64_t { 1 } << 40;
    CHECK(huge.Painted() > 45);
    CHECK(huge.Pixel(99, 30) == blue);
    CHECK(huge.Pixel(40, 30) == background); // the frame ends long before the rays go left
    const int64_t cost = (int64_t { 1 } << 40) - huge.context.workLeft;
    CHECK(cost < VisLimits::blobRayPixels * 2 * VisLimits::rayPixelWork * 4);

    Scene poor({ { u"BaseRadius", u"2.1e7" }, { u"LocationEquation", u"d=9" } });
    poor.context.workLeft = 1 << 20;
    CHECK(poor.Painted() == 0);
    CHECK(poor.context.workLeft >= 0);
    Scene both({ { u"BaseRadius", u"2.1e7" }, { u"MaxDeltaRadius", u"2.1e7" } });
    both.context.workLeft = 1 << 22;
    CHECK(both.Painted() > 0);
}

TEST_CASE("Small pictures have small blobs, and none writes outside")
{
    for (const auto& [width, height] : { std::pair { 1, 1 }, { 5, 5 }, { 7, 3 }, { 3, 7 } }) {
        for (const OQChar* radius : { u".1", u".5", u"9" }) {
            for (const OQChar* location : { u"d=0", u"d=.9;r=r+.1", u"d=-.9;r=r+.1" }) {
                Scene scene({ { u"BaseRadius", radius }, { u"LocationEquation", location } }, width,
                    height);
                for (int i = 0; i < 10; ++i)
                    scene.Draw();
            }
        }
    }
}

TEST_CASE("The blob's rows come in their order with the defaults")
{
    CBlobOscilloscopeVisComponent blob;
    CVisPropertyList list;
    list.AddRow(u"Gradient", u"{1, 1} [[0x010203]]");
    blob.LoadProperties(&list);
    blob.LoadProperties(nullptr); // leaves the gradient
    CVisPropertyList saved;
    blob.SaveProperties(saved);
    const std::pair<const OQChar*, const OQChar*> expected[]
        = { { u"Gradient", u"{1, 1} [[0x010203]]" }, { u"MaxDeltaRadius", u"0.2" },
              { u"BaseRadius", u"0.12" }, { u"LocationEquation", u"r=0;d=0;" } };
    REQUIRE(saved.GetCount() == 4);
    for (int i = 0; i < 4; ++i) {
        CHECK(saved[i].Name == expected[i].first);
        CHECK(saved[i].Value == expected[i].second);
    }
}
