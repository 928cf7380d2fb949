#include "kernels/DrawLine.h"

#include <doctest/doctest.h>

#include <chrono>
#include <cstdlib>
#include <limits>
#include <random>
#include <vector>

using pxvis::kernels::DrawLine;

namespace {

constexpr uint32_t kInk = 0xFF123456;

struct Picture
{
    int32_t width;
    int32_t height;
    std::vector<uint32_t> bits; // bottom-up

    Picture(int32_t w, int32_t h)
        : width(w)
        , height(h)
        , bits(static_cast<size_t>(w * h))
    {
    }

    uint32_t& At(int64_t x, int64_t y)
    {
        return bits[static_cast<size_t>((height - 1 - y) * width + x)];
    }

    void Line(int32_t x1, int32_t y1, int32_t x2, int32_t y2)
    {
        DrawLine(&At(0, 0), -width, width, height, x1, y1, x2, y2, kInk);
    }

    // The whole walk with one error term for both axes, pixel by pixel, the outside thrown away.
    void WalkedLine(int64_t x, int64_t y, int64_t x2, int64_t y2)
    {
        const int64_t dx = std::abs(x2 - x);
        const int64_t dy = -std::abs(y2 - y);
        const int sx = x < x2 ? 1 : -1;
        const int sy = y < y2 ? 1 : -1;
        int64_t error = dx + dy;
        for (;;) {
            if (x >= 0 && x < width && y >= 0 && y < height)
                At(x, y) = kInk;
            if (x == x2 && y == y2)
                return;
            const int64_t twice = 2 * error;
            if (twice >= dy) {
                error += dy;
                x += sx;
            }
            if (twice <= dx) {
                error += dx;
                y += sy;
            }
        }
    }
};

}

TEST_CASE("A line has the pixels of the whole walk, in all octants and past all edges")
{
    Picture drawn(5, 4);
    Picture walked(5, 4);
    int faults = 0;
    for (int x1 = -5; x1 < 10; ++x1)
        for (int y1 = -4; y1 < 8; ++y1)
            for (int x2 = -5; x2 < 10; ++x2)
                for (int y2 = -4; y2 < 8; ++y2) {
                    drawn.bits.assign(drawn.bits.size(), 0);
                    walked.bits.assign(walked.bits.size(), 0);
                    drawn.Line(x1, y1, x2, y2);
                    walked.WalkedLine(x1, y1, x2, y2);
                    if (drawn.bits != walked.bits && ++faults < 5)
                        FAIL_CHECK("line " << x1 << "," << y1 << " to " << x2 << "," << y2);
                }
    CHECK(faults == 0);
}

TEST_CASE("Ties go away from the start, and both ends are drawn")
{
    Picture picture(5, 3);
    picture.Line(0, 0, 4, 2); // ideal rows 0, 1/2, 1, 3/2, 2
    const std::vector<std::pair<int, int>> ink { { 0, 0 }, { 1, 1 }, { 2, 1 }, { 3, 2 }, { 4, 2 } };
    int count = 0;
    for (uint32_t pixel : picture.bits)
        count += pixel == kInk;
    CHECK(count == 5);
    for (const auto& [x, y] : ink)
        CHECK(picture.At(x, y) == kInk);

    Picture point(3, 3);
    point.Line(1, 2, 1, 2);
    CHECK(point.At(1, 2) == kInk);
}

TEST_CASE("Far lines that cross the picture have the pixels of the whole walk")
{
    std::mt19937 random(7);
    std::uniform_int_distribution<int32_t> far(-300000, 300000);
    std::uniform_int_distribution<int32_t> near(-20, 60);
    int crossed = 0;
    for (int k = 0; k < 60; ++k) {
        // Through a point of the picture, so that most of them are seen.
        const int32_t x = near(random);
        const int32_t y = near(random);
        const int32_t dx = far(random);
        const int32_t dy = far(random);
        Picture drawn(40, 30);
        Picture walked(40, 30);
        drawn.Line(x - dx, y - dy, x + dx, y + dy);
        walked.WalkedLine(x - dx, y - dy, x + dx, y + dy);
        CHECK(drawn.bits == walked.bits);
        crossed += walked.bits != Picture(40, 30).bits;
    }
    CHECK(crossed > 15);
}

TEST_CASE("Lines of any length follow the formula in wide arithmetic")
{
    __extension__ using Wide = __int128;
    std::mt19937 random(11);
    std::uniform_int_distribution<int32_t> any(
        std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max());
    int seen = 0;
    for (int k = 0; k < 4000; ++k) {
        const int32_t x1 = any(random);
        const int32_t y1 = any(random) / 64;
        const int32_t x2 = any(random);
        // Aimed at a point of the picture or near it, as far as the number range allows.
        const double aim
            = y1 + (24.0 - y1) * static_cast<double>(int64_t { x2 } - x1) / (32.0 - x1);
        if (std::abs(aim) > 2e9)
            continue;
        const auto y2 = static_cast<int32_t>(aim);
        const Wide a = std::abs(int64_t { x2 } - x1);
        const Wide b = std::abs(int64_t { y2 } - y1);
        if (a < b || a == 0)
            continue;
        Picture drawn(64, 48);
        Picture wanted(64, 48);
        drawn.Line(x1, y1, x2, y2);
        for (int x = 0; x < 64; ++x) {
            const Wide n = (int64_t { x } - x1) * (x2 > x1 ? 1 : -1);
            if (n < 0 || n > a)
                continue;
            const auto moved = static_cast<int64_t>((2 * n * b + a) / (2 * a));
            const int64_t y = y1 + (y2 > y1 ? moved : -moved);
            if (y >= 0 && y < 48)
                wanted.At(x, y) = kInk;
        }
        REQUIRE(drawn.bits == wanted.bits);
        seen += wanted.bits != Picture(64, 48).bits;
    }
    CHECK(seen > 500);
}

TEST_CASE("Lines between the ends of the number range are exact and take no time")
{
    constexpr int32_t least = std::numeric_limits<int32_t>::min();
    constexpr int32_t most = std::numeric_limits<int32_t>::max();
    Picture picture(8, 8);

    SUBCASE("the diagonal")
    {
        picture.Line(least, least, most, most);
        for (int i = 0; i < 8; ++i)
            CHECK(picture.At(i, i) == kInk);
        CHECK(picture.At(1, 0) == 0);
    }
    SUBCASE("nearly level: the row changes half way, at x = -1/2 rounded up")
    {
        picture.Line(least, 3, most, 4);
        for (int i = 0; i < 8; ++i) {
            CHECK(picture.At(i, 4) == kInk);
            CHECK(picture.At(i, 3) == 0);
        }
    }
    SUBCASE("the other way round the change lies one pixel further to the left")
    {
        picture.Line(most, 4, least, 3);
        for (int i = 0; i < 8; ++i)
            CHECK(picture.At(i, 4) == kInk);
    }
    SUBCASE("a million of them")
    {
        const auto start = std::chrono::steady_clock::now();
        for (int k = 0; k < 1000000; ++k)
            picture.Line(least + k, most, most, least + 3 * k);
        CHECK(std::chrono::steady_clock::now() - start < std::chrono::seconds(20));
    }
    SUBCASE("none is seen of one that passes by")
    {
        picture.Line(least, -1, most, -1);
        picture.Line(8, least, 8, most);
        picture.Line(least, least, most, 0 - 1);
        CHECK(picture.bits == Picture(8, 8).bits);
    }
}
