#include "kernels/BlendCoverage.h"

#include <algorithm>

namespace pxvis::kernels::scalar {

namespace {

constexpr uint32_t alphaMask = 0xFF000000;

uint32_t DividedBy255(uint32_t product) // 0 to 255 * 255
{
    return (product + 127) / 255;
}

uint32_t ByteOf(uint32_t pixel, int shift)
{
    return pixel >> shift & 0xFF;
}

}

void BlendCoverage(uint32_t* target, const uint8_t* coverage, int32_t count, uint32_t pixel)
{
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t part = coverage[i];
        if (part == 0)
            continue;
        uint32_t result = target[i] & alphaMask;
        for (int shift = 0; shift < 24; shift += 8)
            result |= DividedBy255(
                          ByteOf(target[i], shift) * (255 - part) + ByteOf(pixel, shift) * part)
                << shift;
        target[i] = result;
    }
}

void BlendOver(uint32_t* target, const uint32_t* source, int32_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t rest = 255 - ByteOf(source[i], 24);
        if (rest == 255)
            continue;
        uint32_t result = target[i] & alphaMask;
        for (int shift = 0; shift < 24; shift += 8)
            result |= std::min(255u,
                          ByteOf(source[i], shift) + DividedBy255(ByteOf(target[i], shift) * rest))
                << shift;
        target[i] = result;
    }
}

}
