#include "VisTesting.h"
#include "components/CFlushVisComponent.h"
#include "engine2d/VisLimits.h"
#include "engine2d/VisRowCheck.h"
#include "foundation/OQEngineContext.h"

#include <doctest/doctest.h>

#include <initializer_list>
#include <memory>
#include <utility>

namespace {

using Rows = std::initializer_list<std::pair<const OQChar*, const OQChar*>>;

constexpr uint32_t background = 0x00555555;
constexpr int64_t second = 1'000'000'000;

// A Flush on a clock that the test sets.
struct Scene
{
    explicit Scene(Rows rows, int32_t width = 20, int32_t height = 10)
        : scope(&context)
    {
        context.virtualClock = true;
        context.virtualNanoseconds = 7 * second + 1;
        flush = std::make_unique<CFlushVisComponent>();
        CVisPropertyList list;
        for (const auto& [name, value] : rows)
            list.AddRow(name, value);
        flush->LoadProperties(&list);
        flush->SetRect({ 0, 0, width, height });
        buffer.MakeImages(width, height);
    }

    uint32_t Draw(int64_t elapsed = 0, int32_t x = 0, int32_t y = 0)
    {
        context.virtualNanoseconds += elapsed;
        FillBuffer(buffer, background);
        flush->Draw(buffer, audio);
        return PixelAt(buffer, x, y);
    }

    OQString Saved(int32_t row)
    {
        CVisPropertyList saved;
        flush->SaveProperties(saved);
        return saved[row].Value;
    }

    OQEngineContext context;
    OQEngineContextScope scope;
    CDibBuffer buffer;
    TestAudio audio;
    std::unique_ptr<CFlushVisComponent> flush;
};

}

TEST_CASE("A Flush fills its rectangle with its colour, alpha 255, and nothing beside it")
{
    // 21 x 0.25 = 5.25, 21 x 0.75 = 15.75; 11 x 0.5 = 5.5
    Scene scene({ { u"Color", u"0x102030" }, { u"Rectangle", u"0.25;0.5;0.75;9" } }, 21, 11);
    scene.Draw();
    for (int32_t y = 0; y < 11; ++y) {
        for (int32_t x = 0; x < 21; ++x) {
            INFO(x << ", " << y);
            const bool inside = x >= 5 && x < 15 && y >= 5;
            REQUIRE(PixelAt(scene.buffer, x, y) == (inside ? 0xFF102030 : background));
        }
    }
    CHECK(Scene({ { u"Rectangle", u"-5;-5;5;5" } }).Draw() == 0xFF000000);
    for (const OQChar* nothing : { u"1;1;0;0", u"0;0;0;1", u"1e30;0;1e38;1", u"nan;0;-1e38;1" })
        CHECK(Scene({ { u"Rectangle", nothing } }).Draw() == background);
}

TEST_CASE("It fills when f is above 0, and a bad equation never does")
{
    const auto isFilled = [](const OQChar* equation, int32_t level = 0) {
        Scene scene({ { u"FlushEquation", equation } });
        scene.audio.values[VisAudioValueLevel] = level;
        return scene.Draw() != background;
    };
    CHECK(isFilled(u"Always Flush"));
    CHECK(isFilled(u"f=0.001"));
    CHECK(isFilled(u"f=1/0*1e308*1e308")); // infinity
    for (const OQChar* none : { u"f=0", u"f=-1", u"f=1; ", u"", u"g=1", u"f=log(-1)", u"always" })
        CHECK_FALSE(isFilled(none));
    CHECK_FALSE(isFilled(u"Impact Flush", 100));
    CHECK(isFilled(u"Impact Flush", 101));

    // A variable of the script's own survives a resize, f starts again.
    Scene scene({ { u"FlushEquation", u"f=if(t,f,1);t=1" } });
    CHECK(scene.Draw() != background);
    CHECK(scene.Draw() != background);
    scene.flush->SetRect({ 0, 0, 20, 10 });
    CHECK(scene.Draw() == background);
}

TEST_CASE("Colours take turns when more than the interval has passed, from the second one on")
{
    Scene scene({ { u"AlternatingColors", u"2;0xFF0000;00FF00;12345678;" } });
    CHECK(scene.Draw() == 0xFFFF0000);
    CHECK(scene.Draw(2 * second) == 0xFFFF0000); // just the interval
    CHECK(scene.Draw(1) == 0xFF00FF00);
    CHECK(scene.Draw(2 * second) == 0xFF00FF00); // restarted
    CHECK(scene.Draw(1) == 0xFF345678);
    CHECK(scene.Draw(9 * second) == 0xFF000000); // the empty last piece
    CHECK(scene.Draw(9 * second) == 0xFFFF0000);
    CHECK(scene.Saved(0) == u"0xFF0000");
    CHECK(scene.Saved(3) == u"2;0xFF0000;00FF00;12345678;");

    // Frames that don't fill don't count.
    Scene impact({ { u"FlushEquation", u"Impact Flush" }, { u"AlternatingColors", u"0;1;2;3" } });
    CHECK(impact.Draw(5 * second) == background);
    impact.audio.values[VisAudioValueLevel] = 120;
    CHECK(impact.Draw() == 0xFF000002);
    CHECK(impact.Draw() == 0xFF000002); // more than 0 ms are asked for
    CHECK(impact.Draw(1) == 0xFF000003);
}

TEST_CASE("Of the colour and the list the later row counts until the first change")
{
    const Rows listLast { { u"Color", u"0x77" }, { u"AlternatingColors", u"1;0x1;0x2" } };
    const Rows colorLast { { u"AlternatingColors", u"1;0x1;0x2" }, { u"Color", u"0x77" } };
    CHECK(Scene(listLast).Draw() == 0xFF000001);
    Scene scene(colorLast);
    CHECK(scene.Draw() == 0xFF000077);
    CHECK(scene.Draw(second + 1) == 0xFF000002);

    scene.flush->LoadProperties(nullptr);
    CHECK(scene.Draw(100 * second) == 0xFF000000);
    CHECK(scene.Saved(3).IsEmpty());

    // A list of an interval alone leaves the colour, as does a later, empty one.
    CHECK(Scene({ { u"Color", u"0x77" }, { u"AlternatingColors", u"5" } }).Draw() == 0xFF000077);
    Scene emptied({ { u"AlternatingColors", u"0;1;2" }, { u"AlternatingColors", u"" } });
    CHECK(emptied.Draw(20 * second) == 0xFF000001);
}

TEST_CASE("Rows come in their order with their defaults; checks point into the list of colours")
{
    CFlushVisComponent flush;
    CVisPropertyList saved;
    flush.SaveProperties(saved);
    REQUIRE(saved.GetCount() == 4);
    const std::pair<const OQChar*, const OQChar*> expected[]
        = { { u"Color", u"0x000000" }, { u"Rectangle", u"0;0;1;1" }, { u"FlushEquation", u"f=1;" },
              { u"AlternatingColors", u"" } };
    for (int32_t i = 0; i < 4; ++i) {
        CHECK(saved[i].Name == expected[i].first);
        CHECK(saved[i].Value == expected[i].second);
    }

    CVisRowInfoList rows;
    CHECK(flush.DescribeRows(rows) == 0);
    const auto position = [&](const OQChar* text) {
        const CVisRowFault fault = CheckRowText(rows[3], text);
        return fault.reason.IsEmpty() ? 0 : fault.position;
    };
    CHECK(position(u"") == 0);
    CHECK(position(u"10;0xFF0000;00ff00") == 0);
    CHECK(position(u"x;0xFF0000") == 1);
    CHECK(position(u"10;0xFF0000; 0x00FF00") == 13);
    CHECK(position(u"10;") == 4);
    CHECK_FALSE(CheckRowText(rows[3], u"10").reason.IsEmpty());
}

TEST_CASE("Tiny and large pictures, and a Draw that may cost no more")
{
    for (const auto& [width, height] :
        { std::pair { 1, 1 }, std::pair { 5, 5 }, std::pair { 7, 3 } })
        CHECK(Scene({}, width, height).Draw(0, width - 1, height - 1) == 0xFF000000);
    // The layer's images may be of another size than it has now.
    Scene scene({});
    scene.flush->SetRect({ 0, 0, 1 << 30, 1 << 30 });
    CHECK(scene.Draw() == 0xFF000000);

    Scene poor({ { u"AlternatingColors", u"0;1;2" } });
    poor.context.workLeft = 4 * VisLimits::compileCharacterWork + 20 * 10;
    CHECK(poor.Draw(1) == background);
    poor.context.workLeft = VisLimits::workAtLeast;
    CHECK(poor.Draw() == 0xFF000002);
}
