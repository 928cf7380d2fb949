#pragma once

#include "kernels/Wrapped.h"

#include <cstdint>

// Pixels; right and bottom are the first column and row outside.
struct OQRect
{
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;

    // Wide rectangles from strangers' fractions may overflow 32 bits; the difference wraps.
    int32_t Width() const { return pxvis::kernels::SubtractWrapped(right, left); }

    int32_t Height() const { return pxvis::kernels::SubtractWrapped(bottom, top); }

    bool operator==(const OQRect&) const = default;
};

struct OQSize
{
    int32_t cx = 0;
    int32_t cy = 0;

    bool operator==(const OQSize&) const = default;
};
