#pragma once

#include "kernels/FeedbackPixel.h"

namespace pxvis::kernels {

// A feedback pass whose source positions are interpolated from a coarse grid.
struct DynamicTransformPass : FeedbackPass
{
    static constexpr int32_t cell = 8; // pixels from one grid point to the next

    // How far to the right and below each grid point's source lies, in 1/32 pixel: (x, y) pairs in
    // rows from the top, the first point at pixel (0, 0).
    const int32_t* points = nullptr;
    int32_t gridWidth = 0; // width / cell + 1, so the last pixels may lie behind the last point
    int32_t gridHeight = 0;
};

// Writes row y, 1 <= y <= height - 2, but for its first and last pixel. Behind the last column or
// row of points that one goes on. Sums and products wrap in 32 bits.
void DynamicTransformRow(const DynamicTransformPass& pass, int32_t y);

namespace scalar {

void DynamicTransformRow(const DynamicTransformPass& pass, int32_t y);

}

}
