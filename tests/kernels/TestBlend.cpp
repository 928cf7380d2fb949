#include "kernels/Blend.h"

#include "KernelTesting.h"
#include "kernels/BlendCoverage.h"

#include <cmath>

using namespace pxvis::kernels;

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

TEST_CASE("Blends are the same at every instruction set, and touch nothing outside the run")
{
    ForEachInstructionSet([] {
        std::mt19937 random(1);
        for (int32_t count = 0; count <= 67; ++count) {
            const auto size = static_cast<size_t>(count);
            for (size_t offset = 0; offset < 17; ++offset) {
                GuardedRow<uint32_t> source(size, random() % 17, random);
                for (int32_t i = 0; i < count; ++i)
                    if (random() % 3 == 0)
                        source.Data()[i] = random() % 2 ? 0xFFFFFFFF : 0x00FF0100;
                GuardedRow<uint32_t> target(size, offset, random);
                GuardedRow<uint32_t> expected = target;
                BlendRow(target.Data(), source.Data(), count);
                scalar::BlendRow(expected.Data(), source.Data(), count);
                BlendOver(target.Data(), source.Data(), count);
                scalar::BlendOver(expected.Data(), source.Data(), count);
                const auto* coverage = reinterpret_cast<const uint8_t*>(source.Data()) + offset % 4;
                BlendCoverage(target.Data(), coverage, count, 0x12FF8003);
                scalar::BlendCoverage(expected.Data(), coverage, count, 0x12FF8003);
                INFO("count " << count << ", offset " << offset);
                CHECK(target == expected);
            }
        }
    });
}
