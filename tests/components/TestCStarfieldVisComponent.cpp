#include "VisTesting.h"
#include "components/CStarfieldVisComponent.h"
#include "engine2d/VisLimits.h"
#include "foundation/OQEngineContext.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

namespace {

using Rows = std::initializer_list<std::pair<const OQChar*, const OQChar*>>;
using Point = std::pair<int32_t, int32_t>;

constexpr uint32_t background = 0x00555555;

void Load(CStarfieldVisComponent& stars, Rows rows)
{
    CVisPropertyList list;
    for (const auto& [name, value] : rows)
        list.AddRow(name, value);
    stars.LoadProperties(&list);
}

// Random numbers from 1 on, as a test can draw them as well.
struct Scene
{
    explicit Scene(Rows rows, int32_t width = 40, int32_t height = 30)
        : scope(&context)
        , stars(std::make_unique<CStarfieldVisComponent>())
        , width(width)
        , height(height)
    {
        Load(*stars, rows);
        buffer.MakeImages(width, height);
        context.randomState = 1;
    }

    int32_t Draw()
    {
        FillBuffer(buffer, background);
        return stars->Draw(buffer, audio);
    }

    std::vector<Point> Lit()
    {
        std::vector<Point> points;
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) {
                if (PixelAt(buffer, x, y) != background)
                    points.emplace_back(x, y);
            }
        }
        return points;
    }

    OQEngineContext context;
    OQEngineContextScope scope;
    CDibBuffer buffer;
    TestAudio audio;
    std::unique_ptr<CStarfieldVisComponent> stars;
    int32_t width;
    int32_t height;
};

}

TEST_CASE("Stars are projected by integer divisions, lose depth, and leave with the picture")
{
    using pxvis::kernels::DrawStars;
    using pxvis::kernels::Star;
    uint32_t bits[7 * 5] = {};
    uint32_t pixels[256];
    for (uint32_t i = 0; i < 256; ++i)
        pixels[i] = i + 1;
    Star stars[] = {
        { 3, -2, 512 }, // 4 + 3 is outside
        { -9, 5, 2000 }, // 4 - 2.304, 3 + 1.28
        { 0, 0, 0 }, { 2, -1, 300 }, // 4 + 3.41
        { 0, 0, 1000 }, { 1, 1, -5 }, { -4, -3, 512 }, // the corner
    };
    CHECK(DrawStars(stars, 7, { bits, 7, 5, pixels, 1000, 30 }) == 3);
    CHECK(stars[0].z == 1970);
    CHECK(stars[1].z == 970);
    CHECK(stars[2].x == -4);
    const auto at = [&](int32_t x, int32_t y) { return bits[(4 - y) * 7 + x]; };
    CHECK(at(2, 4) == 256); // number 512 of 256
    CHECK(at(4, 3) == 256); // number 256, in a star's first frame
    CHECK(at(0, 0) == 132); // 512 x 256 / 1000 = 131
    CHECK(std::count(std::begin(bits), std::end(bits), 0u) == 7 * 5 - 3);
}

TEST_CASE("Any numbers wrap, and divide by neither 0 nor the opposite of the least number")
{
    using pxvis::kernels::DrawStars;
    using pxvis::kernels::Star;
    uint32_t bits[7 * 5] = {};
    const std::vector<uint32_t> pixels(256, 1);
    const int32_t values[] = { INT32_MIN, INT32_MIN + 1, -1, 0, 1, 1 << 22, 1 << 23, INT32_MAX };
    for (const int32_t farthest : values) {
        for (const int32_t speed : values) {
            std::vector<Star> stars;
            for (const int32_t x : values) {
                for (const int32_t z : values)
                    stars.push_back({ x, -x / 2, z });
            }
            auto count = static_cast<int32_t>(stars.size());
            for (int i = 0; i < 3; ++i)
                count = DrawStars(
                    stars.data(), count, { bits, 7, 5, pixels.data(), farthest, speed });
            CHECK(count >= 0);
        }
    }
    // Depth 2^23 x 256 is the least number: over -1 it wraps to itself, the first shade.
    Star far { 0, 0, 1 << 23 };
    uint32_t shades[256] = { 42 };
    CHECK(DrawStars(&far, 1, { bits, 7, 5, shades, -1, 0 }) == 1);
    CHECK(bits[(4 - 3) * 7 + 4] == 42);
}

TEST_CASE("New stars are drawn from the second frame on, from the random numbers in their order")
{
    Scene scene({ { u"CreationOffsetScale", u"1" }, { u"CreationDistance", u"512" },
                    { u"StarDensity", u"6" }, { u"Speed", u"0" },
                    { u"StarColorGradient", u"{2, 1} [[0x000000,0xFF8000]]" } },
        41, 30);
    CHECK(scene.Draw() == 0);
    CHECK(scene.Lit().empty());

    OQEngineContext context;
    const OQEngineContextScope scope(&context);
    const int32_t births = OQRand() % 6;
    REQUIRE(births >= 2);
    std::vector<Point> expected;
    for (int32_t i = 0; i < births; ++i) {
        const int32_t x = 21 + OQRand() % 41 + 20 - 20;
        const int32_t y = 15 + OQRand() % 30 + 15 - 15;
        if (x < 41 && y < 30)
            expected.emplace_back(x, y);
    }
    REQUIRE_FALSE(expected.empty());
    CHECK(context.randomState == scene.context.randomState);

    scene.Draw();
    std::sort(expected.begin(), expected.end(), [](const Point& a, const Point& b) {
        return std::pair(a.second, a.first) < std::pair(b.second, b.first);
    });
    CHECK(scene.Lit() == expected);
    // Entry 255 of 256, on the way from black: red in the third byte, alpha 0.
    const float share = 255.0f / 256.0f;
    const uint32_t last
        = static_cast<uint32_t>(255 * share) << 16 | static_cast<uint32_t>(128 * share) << 8;
    CHECK(PixelAt(scene.buffer, expected[0].first, expected[0].second) == last);
}

TEST_CASE("A density of 1 draws a number and lets the field empty; a scale of 0 draws none")
{
    Scene scene({ { u"Speed", u"0" }, { u"StarDensity", u"1000" }, { u"CreationOffsetScale", u"1" },
        { u"CreationDistance", u"512" } });
    scene.Draw();
    Load(*scene.stars,
        { { u"Speed", u"200" }, { u"StarDensity", u"1" }, { u"CreationOffsetScale", u"1" },
            { u"CreationDistance", u"512" } });
    // The stars are still there, at depth 512, 312 and 112, then gone.
    size_t before = 10'000;
    for (int i = 0; i < 3; ++i) {
        OQEngineContext drawn { .randomState = scene.context.randomState };
        scene.Draw();
        {
            const OQEngineContextScope scope(&drawn);
            OQRand();
        }
        CHECK(scene.context.randomState == drawn.randomState);
        CHECK((!scene.Lit().empty() && scene.Lit().size() <= before));
        before = scene.Lit().size();
    }
    scene.Draw();
    CHECK(scene.Lit().empty());

    for (const auto& [row, value] : { std::pair { u"CreationOffsetScale", u"0" },
             std::pair { u"CreationOffsetScale", u"1073741824" },
             std::pair { u"StarDensity", u"0" }, std::pair { u"StarDensity", u"-7" } }) {
        Scene none({ { row, value } });
        for (int i = 0; i < 3; ++i)
            CHECK(none.Draw() == 0);
        CHECK(none.context.randomState == 1);
        CHECK(none.Lit().empty());
    }
}

TEST_CASE("At most so many stars are alive, and a frame that may not cost them draws nothing")
{
    // All stay: they are born inside the picture and do not move. On average 16384 a frame.
    Scene scene({ { u"Speed", u"0" }, { u"StarDensity", u"2000000000" },
                    { u"CreationOffsetScale", u"1" }, { u"CreationDistance", u"1024" } },
        64, 64);
    CHECK(scene.stars->KeptPixels() == 0);
    scene.stars->SetRect({ 0, 0, 64, 64 });
    CHECK(scene.stars->KeptPixels() == 300'000);
    for (int i = 0; i < 20; ++i)
        REQUIRE(scene.Draw() == 0);
    CHECK(scene.Lit().size() > 1000);
    // The table's colours, the stars and the random number of those that don't fit any more.
    const int64_t cost
        = 256 * VisLimits::gradientColorWork + VisLimits::stars * VisLimits::starWork;
    scene.context.workLeft = cost - 1;
    CHECK(scene.Draw() == -1);
    CHECK(scene.Lit().empty());
    scene.context.workLeft = cost;
    CHECK(scene.Draw() == 0);
    CHECK(scene.context.workLeft == 0);
}

TEST_CASE("Rows come in their order with their defaults, and any number in any picture is harmless")
{
    CStarfieldVisComponent stars;
    CVisPropertyList saved;
    stars.SaveProperties(saved);
    const std::pair<const OQChar*, const OQChar*> expected[] = { { u"CreationDistance", u"8000" },
        { u"CreationOffsetScale", u"8" }, { u"StarDensity", u"10" }, { u"Speed", u"50" } };
    REQUIRE(saved.GetCount() == 5);
    for (int32_t i = 0; i < 4; ++i) {
        CHECK(saved[i].Name == expected[i].first);
        CHECK(saved[i].Value == expected[i].second);
    }
    CHECK(saved[4].Name == u"StarColorGradient");
    CHECK(saved[4].Value.StartsWith(u"{"));

    const OQChar* numbers[] = { u"0", u"1", u"-1", u"2147483647", u"-2147483647", u"40000000" };
    for (const OQChar* distance : numbers) {
        for (const OQChar* scale : numbers) {
            for (const OQChar* speed : numbers) {
                Scene scene({ { u"CreationDistance", distance }, { u"CreationOffsetScale", scale },
                                { u"StarDensity", u"50" }, { u"Speed", speed } },
                    7, 3);
                for (int i = 0; i < 3; ++i)
                    CHECK(scene.Draw() == 0);
            }
        }
    }
    for (const auto& [width, height] : { Point { 1, 1 }, Point { 5, 5 }, Point { 2, 9 } }) {
        Scene scene({ { u"StarDensity", u"100" } }, width, height);
        for (int i = 0; i < 200; ++i)
            CHECK(scene.Draw() == 0);
    }
    CStarfieldVisComponent without;
    CDibBuffer none;
    TestAudio audio;
    CHECK(without.Draw(none, audio) == -1);
}
