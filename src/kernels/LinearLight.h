#pragma once

#include <cstdint>

namespace pxvis::kernels {

// Light is linear, as averages and mixtures need it: a byte of an sRGB colour (IEC 61966-2-1) is
// worth 0 to linearLightFull, rounded to the nearest.
constexpr int32_t linearLightFull = 64000;

// 256 values, strictly rising.
const uint16_t* LinearLight();

struct LinearLightSum
{
    uint64_t blue = 0;
    uint64_t green = 0;
    uint64_t red = 0;
    uint32_t pixels = 0;
};

// Adds up a row of pixels 0xAARRGGBB in `columns` cells, of which cell i takes the pixels from
// ends[i - 1], or from the row's first one, up to before ends[i]. Of the row only every `step`th
// pixel counts, beginning with `first`.
void SumLinearLight(LinearLightSum* sums, const int32_t* ends, int32_t columns,
    const uint32_t* source, int32_t first, int32_t step);

// The table for MixLinearLight: what 256 * from + to becomes, where `weight` of 256 parts of the
// light are taken from `to`. 0 gives `from` itself, 256 gives `to`.
void FillMixTable(uint8_t* table, int32_t weight);

// Mixes the colours of `count` pixels of `from` and `to`; alpha is that of `to`. The target may be
// one of them.
void MixLinearLight(uint32_t* target, const uint32_t* from, const uint32_t* to, int32_t count,
    const uint8_t* table);

}
