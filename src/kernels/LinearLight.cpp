#include "kernels/LinearLight.h"

#include "kernels/Maths.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace pxvis::kernels {

namespace {

constexpr int32_t byteCount = 256;

std::array<uint16_t, byteCount> MakeLinearLight()
{
    std::array<uint16_t, byteCount> light {};
    for (int32_t byte = 0; byte < byteCount; ++byte) {
        const double value = byte / 255.0;
        const double linear
            = value <= 0.04045 ? value / 12.92 : maths::Pow((value + 0.055) / 1.055, 2.4);
        light[static_cast<size_t>(byte)]
            = static_cast<uint16_t>(std::floor(linear * linearLightFull + 0.5));
    }
    return light;
}

// The byte whose light is nearest, the darker one of two that are equally near.
std::array<uint8_t, linearLightFull + 1> MakeBytes()
{
    std::array<uint8_t, linearLightFull + 1> bytes {};
    const uint16_t* light = LinearLight();
    int32_t byte = 0;
    for (int32_t value = 0; value <= linearLightFull; ++value) {
        while (byte < byteCount - 1 && light[byte + 1] - value < value - light[byte])
            ++byte;
        bytes[static_cast<size_t>(value)] = static_cast<uint8_t>(byte);
    }
    return bytes;
}

}

const uint16_t* LinearLight()
{
    static const std::array<uint16_t, byteCount> light = MakeLinearLight();
    return light.data();
}

void SumLinearLight(LinearLightSum* sums, const int32_t* ends, int32_t columns,
    const uint32_t* source, int32_t first, int32_t step)
{
    const uint16_t* light = LinearLight();
    int32_t x = first;
    for (int32_t column = 0; column < columns; ++column) {
        LinearLightSum& sum = sums[column];
        for (; x < ends[column]; x += step) {
            const uint32_t pixel = source[x];
            sum.blue += light[pixel & 0xFF];
            sum.green += light[(pixel >> 8) & 0xFF];
            sum.red += light[(pixel >> 16) & 0xFF];
            ++sum.pixels;
        }
    }
}

void FillMixTable(uint8_t* table, int32_t weight)
{
    static const std::array<uint8_t, linearLightFull + 1> bytes = MakeBytes();
    const uint16_t* light = LinearLight();
    for (int32_t from = 0; from < byteCount; ++from) {
        for (int32_t to = 0; to < byteCount; ++to) {
            const int32_t mixed = (light[from] * (256 - weight) + light[to] * weight + 128) / 256;
            *table++ = bytes[static_cast<size_t>(mixed)];
        }
    }
}

void MixLinearLight(
    uint32_t* target, const uint32_t* from, const uint32_t* to, int32_t count, const uint8_t* table)
{
    const auto mix = [&](uint32_t a, uint32_t b, int shift) {
        const uint32_t mixed = table[((a >> shift) & 0xFF) << 8 | ((b >> shift) & 0xFF)];
        return mixed << shift;
    };
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t a = from[i];
        const uint32_t b = to[i];
        target[i] = (b & 0xFF000000) | mix(a, b, 16) | mix(a, b, 8) | mix(a, b, 0);
    }
}

}
