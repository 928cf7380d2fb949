#pragma once

#include <cstdint>

namespace pxvis::kernels {

// What the pixels of one pass share. Both pictures are `width` x `height` pixels, rows bottom-up,
// and different memory. Row and column numbers count from the top left.
struct TransformPass
{
    const uint32_t* source = nullptr;
    uint32_t* target = nullptr;
    int32_t width = 0;
    int32_t height = 0;

    // Source position of each pixel in 1/32 pixel, (x, y) pairs in rows from the top; unsigned, so
    // that a negative position is far outside. One of the two is set.
    const uint16_t* map16 = nullptr;
    const uint32_t* map32 = nullptr;

    int32_t left = 1; // columns left <= x < right are written; 1 <= left, right <= width - 1
    int32_t right = 0;
    int32_t ditherThreshold = 0; // 0 to 31: a position whose fraction is above it is rounded up
    int32_t scrollX = 0; // pixels, subtracted from the source position
    int32_t scrollY = 0;
    int32_t zoomX = 0; // start of the row's column offset, in pixels
    int32_t zoomStepX = 0; // added to the row's phase at each pixel
    uint16_t multiplier[4] = {}; // blue, green, red, alpha; 256 would be 1.0
};

// Where a row starts in the zoom: drawn beforehand for all rows, so that rows can run in any order.
struct TransformRowStart
{
    int32_t offsetY = 0; // pixels, added to the source row
    int32_t phaseX = 0; // 0 to 1023
};

// Writes row y (1 <= y <= height - 2): each pixel looks its source up through the map, is softened
// with its four neighbours and multiplied by channel.
void TransformRow(const TransformPass& pass, int32_t y, const TransformRowStart& start);

namespace scalar {

void TransformRow(const TransformPass& pass, int32_t y, const TransformRowStart& start);

}

}
