#include "kernels/BlendCoverage.h"

#include <doctest/doctest.h>

#include <cmath>
#include <vector>

using namespace pxvis::kernels;

namespace {

constexpr uint32_t guard = 0xDEADBEEF;

uint32_t Mixed(uint32_t below, uint32_t above, uint32_t part)
{
    return static_cast<uint32_t>(std::lround((below * (255.0 - part) + above * part) / 255.0));
}

}

TEST_CASE("A covered pixel takes the colour by its part, rounded, and keeps its alpha")
{
    for (uint32_t part = 0; part <= 255; ++part) {
        uint32_t pixel = 0x5A00C8FF;
        const auto coverage = static_cast<uint8_t>(part);
        BlendCoverage(&pixel, &coverage, 1, 0x77FF3200);
        CHECK(pixel
            == (0x5A000000 | Mixed(0, 255, part) << 16 | Mixed(0xC8, 0x32, part) << 8
                | Mixed(0xFF, 0, part)));
    }
}

TEST_CASE("Premultiplied pixels are laid over others, at most white, and alpha stays")
{
    const uint32_t source[] = { 0x00000000, 0xFF112233, 0x80800000, 0x80FFFFFF };
    uint32_t target[] = { 0x11AABBCC, 0x11AABBCC, 0x11FF0080, 0x11FFFFFF };
    BlendOver(target, source, 4);
    CHECK(target[0] == 0x11AABBCC);
    CHECK(target[1] == 0x11112233);
    CHECK(target[2] == (0x11000000 | (0x80u + 127) << 16 | 64)); // half of 0x80 is left
    CHECK(target[3] == 0x11FFFFFF);
}

TEST_CASE("Blending touches its run and nothing beside it")
{
    for (int32_t count = 0; count <= 67; ++count) {
        const auto size = static_cast<size_t>(count);
        std::vector<uint32_t> target(size + 2, guard);
        BlendCoverage(target.data() + 1, std::vector<uint8_t>(size, 255).data(), count, 0x123456);
        for (size_t i = 0; i < target.size(); ++i)
            CHECK(target[i] == (i == 0 || i > size ? guard : 0xDE123456));
        BlendOver(target.data() + 1, std::vector<uint32_t>(size, 0xFF654321).data(), count);
        for (size_t i = 0; i < target.size(); ++i)
            CHECK(target[i] == (i == 0 || i > size ? guard : 0xDE654321));
    }
}
