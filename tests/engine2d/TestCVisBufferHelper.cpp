#include "VisTesting.h"
#include "engine2d/CVisBufferHelper.h"
#include "engine2d/VisLimits.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQTruncate.h"
#include "kernels/BlendColor.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr uint32_t background = 0x40404040;

std::vector<uint32_t> Pixels(IVisBuffer& buffer)
{
    OQSize size;
    buffer.GetSize(&size);
    return { buffer.GetBits(0), buffer.GetBits(0) + size.cx * size.cy };
}

// The picture, top row first: how often a disc was added to each pixel.
std::vector<int> Counts(int32_t width, int32_t height, float d, float r, float s)
{
    CDibBuffer buffer;
    buffer.MakeImages(width, height);
    FillBuffer(buffer, 0);
    CVisBufferHelper(buffer).DrawDisc(d, r, s, 1, 1);
    std::vector<int> counts;
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x)
            counts.push_back(static_cast<int>(PixelAt(buffer, x, y)));
    }
    return counts;
}

// Row after row, all of them, in the way it is told, from a middle in whole pixels.
void DrawPlainDisc(std::vector<uint32_t>& bits, int64_t width, int64_t height, int64_t column,
    int64_t row, int64_t radius, void (*blend)(uint32_t*, int32_t, uint32_t), uint32_t pixel)
{
    for (int64_t offset = -radius; offset <= radius; ++offset) {
        const auto square = static_cast<double>(radius * radius - offset * offset);
        const auto span = static_cast<int64_t>(2 * std::sqrt(square) + 0.5);
        const int64_t x = std::clamp<int64_t>(column - span / 2, 0, width - 1);
        const int64_t y = std::clamp<int64_t>(row + offset, 0, height - 1);
        const int64_t first = (height - 1 - y) * width + x;
        blend(bits.data() + first, static_cast<int32_t>(std::min(span, width * height - first)),
            pixel);
    }
}

}

TEST_CASE("A disc in the middle has rows of twice the root, rounded, that start half to the left")
{
    // 12 x 8: the corner is the root of 52 and 1, 8.21, away; 8 x 0.375 = 3. Spans of radius 3:
    // 0, 4.47, 5.66, 6 -> 0, 4, 6, 6, 6, 4, 0
    const std::vector<int> expected {
        0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, //
        0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, //
        0, 0, 0, 0, 1, 1, 1, 1, 0, 0, 0, 0, //
        0, 0, 0, 1, 1, 1, 1, 1, 1, 0, 0, 0, //
        0, 0, 0, 1, 1, 1, 1, 1, 1, 0, 0, 0, //
        0, 0, 0, 1, 1, 1, 1, 1, 1, 0, 0, 0, //
        0, 0, 0, 0, 1, 1, 1, 1, 0, 0, 0, 0, //
        0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, //
    };
    CHECK(Counts(12, 8, 0, 0.3f, 0.375f) == expected);
    const std::vector<int> nothing(12 * 8);
    CHECK(Counts(12, 8, 0, 0, 0) == nothing); // one row of no pixels
    CHECK(Counts(12, 8, 0, 0, -0.375f) == nothing);
    CHECK(Counts(12, 8, 0, 0, 0.124f) == nothing);
}

TEST_CASE("A disc goes round anticlockwise from the right, a whole turn at 1")
{
    // 8.21 x 0.25 = 2.05 from the middle at (6, 4), radius 1: one row of 2 pixels.
    const auto placed = [](float r) {
        const std::vector<int> counts = Counts(12, 8, 0.25f, r, 0.125f);
        const auto at = std::find(counts.begin(), counts.end(), 1) - counts.begin();
        CHECK(std::count(counts.begin(), counts.end(), 1) == 2);
        return std::pair(at % 12 + 1, at / 12);
    };
    CHECK(placed(0) == std::pair { 8L, 4L });
    CHECK(placed(0.25f) == std::pair { 6L, 2L });
    CHECK(placed(0.5f) == std::pair { 4L, 4L });
    CHECK(placed(0.75f) == std::pair { 6L, 6L });
    CHECK(placed(1) == std::pair { 8L, 4L });
}

TEST_CASE("At an edge rows pile up, and what leaves on the right goes on in the row above")
{
    // 6 x 4: 4.6 to the corner, radius 4 around (-1, 2), spans 0, 5, 7, 8, 8, 8, 7, 5, 0.
    const std::vector<int> left = Counts(6, 4, -1, 0, 1);
    const std::vector<int> expected {
        3, 3, 2, 2, 2, 1, // 5 and 7 of the rows above, and the rest of the row below
        2, 2, 1, 1, 1, 1, // 8, and the rest of the row below
        3, 2, 1, 1, 1, 1, // 8, and the rests of 8 and 7
        3, 3, 3, 3, 3, 2, // 8, 7 and 5
    };
    CHECK(left == expected);
}

TEST_CASE("However large a disc is, the picture is that of all its rows")
{
    constexpr auto blends = std::to_array({ pxvis::kernels::ReplaceColor, pxvis::kernels::AddColor,
        pxvis::kernels::SubtractColor, pxvis::kernels::AverageColor });
    for (const OQSize size :
        { OQSize { 1, 1 }, OQSize { 5, 5 }, OQSize { 7, 3 }, OQSize { 16, 9 } }) {
        for (const float d : { 0.0f, 0.5f, 1.0f, 20.0f, 100.0f }) {
            for (const float s : { 0.3f, 1.0f, 5.0f, 40.0f, 200.0f }) {
                for (int turn = 0; turn < 8; ++turn) {
                    const float r = static_cast<float>(turn) * 0.13f;
                    const auto mode = static_cast<size_t>(turn % 4);
                    CDibBuffer buffer;
                    buffer.MakeImages(size.cx, size.cy);
                    FillBuffer(buffer, background);
                    std::vector<uint32_t> expected = Pixels(buffer);
                    CVisBufferHelper(buffer).DrawDisc(
                        d, r, s, 0x00010203, static_cast<int32_t>(mode));

                    const double corner = std::hypot(size.cx * 0.5, size.cy * 0.5) + 1;
                    const double angle = static_cast<double>(r * 6.2831855f);
                    const double away = static_cast<double>(static_cast<float>(corner) * d);
                    DrawPlainDisc(expected, size.cx, size.cy,
                        OQTruncateToInt32(std::cos(angle) * away + size.cx * 0.5 + 0.5),
                        OQTruncateToInt32(size.cy * 0.5 - std::sin(angle) * away + 0.5),
                        OQTruncateToInt32(std::floor(static_cast<float>(corner)) * s), blends[mode],
                        0x00010203);
                    INFO(size.cx << " x " << size.cy << ", " << d << ", " << r << ", " << s);
                    REQUIRE(Pixels(buffer) == expected);
                }
            }
        }
    }
}

TEST_CASE("Other modes change nothing, and any number is harmless and soon done")
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const float numbers[] = { 0, 0.5f, -1, 1e9f, 1e38f, -1e38f, infinity, -infinity, NAN };
    CDibBuffer buffer;
    buffer.MakeImages(31, 17);
    FillBuffer(buffer, background);
    CVisBufferHelper picture(buffer);
    for (const int32_t mode : { 4, 5, -1, INT32_MAX, INT32_MIN })
        picture.DrawDisc(0, 0, 0.5f, -1, mode);
    CHECK(std::ranges::count(Pixels(buffer), background) == 31 * 17);
    for (const float d : numbers) {
        for (const float r : numbers) {
            for (const float s : numbers)
                picture.DrawDisc(d, r, s, 0x01020304, 1);
        }
    }
    // A disc that the Draw may not cost is left out.
    FillBuffer(buffer, background);
    OQEngineContext context;
    const OQEngineContextScope scope(&context);
    context.workLeft = 100;
    picture.DrawDisc(0, 0, 0.5f, -1, 0);
    CHECK(context.workLeft == 100);
    CHECK(std::ranges::count(Pixels(buffer), background) == 31 * 17);
    CDibBuffer none;
    CVisBufferHelper(none).DrawDisc(0, 0, 1, 0, 1);
}
