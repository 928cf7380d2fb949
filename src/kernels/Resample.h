#pragma once

#include <cstddef>
#include <cstdint>

namespace pxvis::kernels {

// The pieces of a smooth stretch. Along an axis target pixel i stands for the part [i, i + 1) *
// source / target of the source. Where the axis shrinks it is the average of that part, where it
// grows the linear mix of the two source pixels round the part's centre, cut to the outer ones.
// Colours are weighed by their alpha, so that those of transparent pixels don't show. Between the
// pieces a pixel is four values, blue, green, red times alpha, and alpha times 255: 0 to 65025.

struct ResampleSpan
{
    int32_t first; // source pixel
    int32_t count; // at least 1
};

// How many source pixels make a target pixel at most. Both sizes at least 1.
int32_t MaxResampleCount(int64_t targetSize, int32_t sourceSize);

// The source pixels of target pixel i, and their weights, in 1/65536, which add up to 1. Sizes at
// least 1, the source's at most 65536, the target's at most 2^40.
ResampleSpan ResampleWeights(uint32_t* weights, int64_t i, int64_t targetSize, int32_t sourceSize);

// Mixes a row of source pixels 0xAARRGGBB to `count` target pixels. `weights` holds those of the
// first span, of the second one and so on.
void ResampleRow(uint16_t* target, const uint32_t* source, const ResampleSpan* spans,
    const uint32_t* weights, int32_t count);

// Adds a row times a weight to sums, which start at 0; the weights of a target row add up to 65536.
void ResampleAddRow(uint32_t* sums, const uint16_t* row, uint32_t weight, int32_t count);

// Writes finished sums as pixels; where alpha is 0 the whole pixel is.
void ResampleStoreRow(uint32_t* target, const uint32_t* sums, int32_t count);

}
