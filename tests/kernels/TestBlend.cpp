#include "kernels/Blend.h"

#include <doctest/doctest.h>

#include <cmath>
#include <vector>

using pxvis::kernels::BlendRow;

TEST_CASE("A blend is the rounded mix by the source's alpha, and keeps the target's alpha")
{
    constexpr uint32_t guard = 0xDEADBEEF;
    for (uint32_t alpha = 0; alpha < 256; ++alpha) {
        std::vector<uint32_t> target(257, 0x77000000);
        std::vector<uint32_t> source(256);
        for (uint32_t i = 0; i < 256; ++i) {
            target[i] |= i << 16 | (255 - i) << 8 | 90;
            source[i] = alpha << 24 | (i ^ 0x55) << 16 | 255 << 8 | i;
        }
        target.back() = guard;
        const std::vector<uint32_t> before = target;
        BlendRow(target.data(), source.data(), 256);
        REQUIRE(target.back() == guard);
        for (uint32_t i = 0; i < 256; ++i) {
            REQUIRE((target[i] & 0xFF000000) == 0x77000000);
            for (int shift = 0; shift < 24; shift += 8) {
                const double over = source[i] >> shift & 0xFF;
                const double there = before[i] >> shift & 0xFF;
                REQUIRE((target[i] >> shift & 0xFF)
                    == std::lround((over * alpha + there * (255 - alpha)) / 255));
            }
        }
    }
}
