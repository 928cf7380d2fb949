#include "kernels/CopyRect.h"
#include "kernels/FillRect.h"
#include "kernels/PixelFromColor.h"

#include <doctest/doctest.h>

#include <numeric>
#include <vector>

using namespace pxvis::kernels;

namespace {

constexpr uint32_t kGuard = 0xDEADBEEF;

}

TEST_CASE("Red and blue change places between a colour and a pixel, the top byte goes")
{
    CHECK(PixelFromColor(0x000000FF) == 0x00FF0000);
    CHECK(PixelFromColor(0xFF112233) == 0x00332211);
}

TEST_CASE("A fill writes its block and nothing beside it, at every width, offset and direction")
{
    for (const int direction : { 1, -1 })
        for (int width = 0; width <= 67; ++width)
            for (int offset = 0; offset < 5; ++offset) {
                constexpr int stride = 80;
                constexpr int rows = 4;
                std::vector<uint32_t> bits(stride * rows, kGuard);
                uint32_t* top = bits.data() + (direction > 0 ? stride : 2 * stride) + offset;
                FillRect(top, direction * stride, width, 2, 7);
                for (int i = 0; i < stride * rows; ++i) {
                    const int x = i % stride;
                    const int y = i / stride;
                    const bool inside = x >= offset && x < offset + width && (y == 1 || y == 2);
                    REQUIRE(bits[static_cast<size_t>(i)] == (inside ? 7u : kGuard));
                }
            }
    std::vector<uint32_t> bits(4, kGuard);
    FillRect(bits.data(), 2, -1, 2, 7);
    FillRect(bits.data(), 2, 2, -1, 7);
    CHECK(bits == std::vector<uint32_t>(4, kGuard));
}

TEST_CASE("A copy inside one picture is as if all had been read first, whichever way it moves")
{
    constexpr int size = 9;
    for (const int direction : { 1, -1 })
        for (int dx = -2; dx <= 2; ++dx)
            for (int dy = -2; dy <= 2; ++dy) {
                std::vector<uint32_t> bits(size * size);
                std::iota(bits.begin(), bits.end(), 0u);
                const std::vector<uint32_t> before = bits;
                const auto at
                    = [&](int x, int y) { return (direction > 0 ? y : size - 1 - y) * size + x; };
                CopyRect(&bits[static_cast<size_t>(at(2 + dx, 2 + dy))], direction * size,
                    &bits[static_cast<size_t>(at(2, 2))], direction * size, 5, 5);
                for (int y = 0; y < size; ++y)
                    for (int x = 0; x < size; ++x) {
                        const bool copied = x >= 2 + dx && x < 7 + dx && y >= 2 + dy && y < 7 + dy;
                        const int from = copied ? at(x - dx, y - dy) : at(x, y);
                        REQUIRE(bits[static_cast<size_t>(at(x, y))]
                            == before[static_cast<size_t>(from)]);
                    }
            }
}
