#pragma once

#include <cstdint>

// Pixels; right and bottom are the first column and row outside.
struct OQRect
{
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;

    // Wide rectangles from strangers' fractions may overflow 32 bits; the difference wraps.
    int32_t Width() const { return Difference(right, left); }

    int32_t Height() const { return Difference(bottom, top); }

    bool operator==(const OQRect&) const = default;

private:
    static int32_t Difference(int32_t a, int32_t b)
    {
        return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
    }
};

struct OQSize
{
    int32_t cx = 0;
    int32_t cy = 0;

    bool operator==(const OQSize&) const = default;
};
