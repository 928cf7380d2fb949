#pragma once

#include <cstddef>
#include <cstdint>

namespace pxvis::kernels {

// Paints the way from (x, y) in steps of (stepX, stepY), the first step's pixel first, until
// `count` pixels are painted or a step leaves 0 to width - 1 or 0 to height - 1. Positions are
// truncated. Step i takes pixels[i], and from `pixelCount`, which is 1 or more, on the last one.
// `first` and `stride` as in FillRect. Gives how many pixels were painted.
int32_t DrawRay(uint32_t* first, ptrdiff_t stride, int32_t width, int32_t height, double x,
    double y, double stepX, double stepY, int32_t count, const uint32_t* pixels,
    int32_t pixelCount);

namespace scalar {

int32_t DrawRay(uint32_t* first, ptrdiff_t stride, int32_t width, int32_t height, double x,
    double y, double stepX, double stepY, int32_t count, const uint32_t* pixels,
    int32_t pixelCount);

}

}
