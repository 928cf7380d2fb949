#pragma once

#include "kernels/FeedbackPixel.h"

namespace pxvis::kernels {

// A feedback pass through a map that lies around the picture's centre, so that it can be turned,
// stretched and shifted as it is read.
struct SuperTransformPass : FeedbackPass
{
    // Where each pixel comes from, in 1/32 pixel from the centre, x to the right and y downward:
    // (x, y) pairs in rows from the top. One of the two is set.
    const int16_t* map16 = nullptr;
    const int32_t* map32 = nullptr;

    int32_t sine = 0; // of the rotation, 1024 being 1.0
    int32_t cosine = 1024;
    int32_t factorX = 1024; // of the stretch, 1024 being 1.0
    int32_t factorY = 1024;
    int32_t scrollX = 0; // 1/32 pixels that the source lies to the left
    int32_t scrollY = 0; // and below
};

// Writes row y, 1 <= y <= height - 2, but for its first and last pixel. Sums and products wrap in
// 32 bits.
void SuperTransformRow(const SuperTransformPass& pass, int32_t y);

namespace scalar {

void SuperTransformRow(const SuperTransformPass& pass, int32_t y);

}

}
