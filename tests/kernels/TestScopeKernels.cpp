#include "kernels/DrawRay.h"
#include "kernels/DrawWaveRun.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

using pxvis::kernels::DrawRay;
using pxvis::kernels::DrawWaveRun;

namespace {

constexpr uint32_t guard = 0xDEADBEEF;
constexpr size_t guardWords = 64;

struct Picture
{
    int32_t width;
    int32_t height;
    std::vector<uint32_t> words; // bottom-up, guard words in front and behind

    Picture(int32_t w, int32_t h)
        : width(w)
        , height(h)
        , words(static_cast<size_t>(w * h) + 2 * guardWords, guard)
    {
        std::fill(words.begin() + guardWords, words.end() - guardWords, 0u);
    }

    uint32_t& At(int32_t x, int32_t y)
    {
        return words[guardWords + static_cast<size_t>((height - 1 - y) * width + x)];
    }

    bool IsGuarded() const
    {
        const auto isGuard = [](uint32_t word) { return word == guard; };
        return std::all_of(words.begin(), words.begin() + guardWords, isGuard)
            && std::all_of(words.end() - guardWords, words.end(), isGuard);
    }

    size_t Painted() const
    {
        return static_cast<size_t>(std::count_if(words.begin() + guardWords,
            words.end() - guardWords, [](uint32_t word) { return word != 0; }));
    }
};

std::vector<uint32_t> Inks(size_t count)
{
    std::vector<uint32_t> inks(count);
    std::iota(inks.begin(), inks.end(), 1u);
    return inks;
}

}

TEST_CASE("A run stands across its line: positive offsets go right and up, each 2 pixels wide")
{
    const auto inks = Inks(5); // offsets -2 to 2
    Picture level(16, 16);
    DrawWaveRun(&level.At(0, 0), -16, 16, 16, { 8, 8, 0.0, 1.0 }, -2, 5, inks.data());
    for (int32_t offset = -2; offset <= 2; ++offset) {
        CHECK(level.At(8, 8 - offset) == static_cast<uint32_t>(offset + 3));
        CHECK(level.At(9, 8 - offset) == static_cast<uint32_t>(offset + 3));
    }
    CHECK(level.Painted() == 10u);

    Picture upright(16, 16); // the later offset paints over the second column of the one before
    DrawWaveRun(&upright.At(0, 0), -16, 16, 16, { 8, 8, 1.0, 0.0 }, -2, 5, inks.data());
    for (int32_t offset = -2; offset <= 2; ++offset)
        CHECK(upright.At(8 + offset, 8) == static_cast<uint32_t>(offset + 3));
    CHECK(upright.At(11, 8) == 5);

    // A sine of -0.6 moves offset 2 by -1.2 + 0.5, truncated to 0, and offset 3 by -1.3 to -1,
    // whose second column covers the first one of offset 2.
    Picture falling(16, 16);
    DrawWaveRun(&falling.At(0, 0), -16, 16, 16, { 8, 8, -0.6, 0.8 }, 2, 2, inks.data());
    CHECK(falling.At(9, 6) == 1); // 0.8 * 2 + 0.5 = 2.1
    CHECK(falling.At(8, 6) == 2);
    CHECK(falling.At(7, 6) == 2); // 0.8 * 3 + 0.5 = 2.9
}

TEST_CASE("Runs stay 4 pixels inside, and in pictures too small for that write nothing outside")
{
    const auto inks = Inks(200);
    for (int32_t width = 1; width <= 20; ++width) {
        for (int32_t height = 1; height <= 20; ++height) {
            Picture picture(width, height);
            for (const auto& [sine, cosine] : { std::pair { 0.0, 1.0 }, { 1.0, 0.0 }, { 0.6, 0.8 },
                     { -0.8, 0.6 }, { -1.0, 6e-17 } })
                for (const int64_t at :
                    { int64_t { -1 } << 30, int64_t { 0 }, int64_t { 7 }, int64_t { 1 } << 30 })
                    DrawWaveRun(&picture.At(0, 0), -width, width, height, { at, -at, sine, cosine },
                        -100, 200, inks.data());
            CAPTURE(width);
            CAPTURE(height);
            CHECK(picture.IsGuarded());
            if (width >= 8 && height >= 8) {
                for (int32_t y = 0; y < height; ++y) {
                    for (int32_t x = 0; x < width; ++x) {
                        const bool isMargin = x < 4 || x > width - 3 || y < 4 || y > height - 4;
                        if (isMargin)
                            CHECK(picture.At(x, y) == 0);
                    }
                }
            }
        }
    }
}

TEST_CASE("A ray takes its first step before it paints, and ends at its count or at the edge")
{
    const auto inks = Inks(4);
    Picture picture(10, 6);
    CHECK(DrawRay(&picture.At(0, 0), -10, 10, 6, 2, 3, 1, 0, 3, inks.data(), 4) == 3);
    CHECK(picture.At(2, 3) == 0);
    CHECK(picture.At(3, 3) == 1);
    CHECK(picture.At(5, 3) == 3);
    CHECK(picture.Painted() == 3u);

    // Half steps: two of them on a pixel, of which the later stays. Column 9 is the last.
    CHECK(DrawRay(&picture.At(0, 0), -10, 10, 6, 7, 1, 0.5, 0, 99, inks.data(), 4) == 4);
    CHECK(picture.At(7, 1) == 1);
    CHECK(picture.At(8, 1) == 3);
    CHECK(picture.At(9, 1) == 4);

    // From one column outside the first step may come in; from two it may not.
    CHECK(DrawRay(&picture.At(0, 0), -10, 10, 6, -1, 5, 1, 0, 2, inks.data(), 1) == 2);
    CHECK(picture.At(0, 5) == 1);
    CHECK(picture.At(1, 5) == 1); // the last colour goes on
    CHECK(DrawRay(&picture.At(0, 0), -10, 10, 6, -2, 5, 1, 0, 2, inks.data(), 1) == 0);
    CHECK(DrawRay(&picture.At(0, 0), -10, 10, 6, -2147483648.0, 5, 1, 0, 2, inks.data(), 1) == 0);
    CHECK(picture.IsGuarded());
}

TEST_CASE("Rays in all directions write nothing outside pictures of any size")
{
    const auto inks = Inks(3);
    for (int32_t width = 1; width <= 9; ++width) {
        for (int32_t height = 1; height <= 9; ++height) {
            Picture picture(width, height);
            for (int32_t x = -2; x <= width + 1; ++x)
                for (const auto& [dx, dy] : { std::pair { 1.0, 0.0 }, { -1.0, 1e-9 }, { 0.6, -0.8 },
                         { -0.6, 0.8 }, { 1e-17, 1.0 } })
                    DrawRay(&picture.At(0, 0), -width, width, height, x, height / 2, dx, dy, 50,
                        inks.data(), 3);
            CHECK(picture.IsGuarded());
        }
    }
}

TEST_CASE("Rays that are cut to the picture first paint the same as those looked at step by step")
{
    std::mt19937 random(1);
    const auto inks = Inks(300);
    for (int turn = 0; turn < 3000; ++turn) {
        const auto width = static_cast<int32_t>(1 + random() % 200);
        const auto height = static_cast<int32_t>(1 + random() % 200);
        const auto x = static_cast<double>(random() % 204) - 2 + (turn % 3) * 0.25;
        const auto y = static_cast<double>(random() % 204) - 2;
        const double angle = turn % 4 == 0 ? turn % 16 * 0.39269908169872414 : turn;
        const double length = turn % 5 == 0 ? 2.5 : 1;
        const auto count = static_cast<int32_t>(random() % 300);
        const auto colors = static_cast<int32_t>(1 + random() % 300);
        Picture cut(width, height);
        Picture whole(width, height);
        const auto draw = [&](auto form, Picture& picture) {
            return form(&picture.At(0, 0), -width, width, height, x, y, length * std::cos(angle),
                length * std::sin(angle), count, inks.data(), colors);
        };
        REQUIRE(draw(DrawRay, cut) == draw(pxvis::kernels::scalar::DrawRay, whole));
        REQUIRE(cut.words == whole.words);
    }
}
