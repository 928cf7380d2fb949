#pragma once

#include <cstddef>
#include <cstdint>

namespace pxvis::kernels {

// Bresenham's line (IBM Systems Journal 4, 1965) from (x1, y1) to (x2, y2), both included, cut to
// the picture of width x height pixels whose top left pixel is `first`; stride in pixels as in
// FillRect. After n of the `major` steps along the longer axis (x if equal) the line has moved
// floor(n * minor / major + 1/2) along the other, counted from (x1, y1). Any coordinates: the
// pixels are those of the whole walk, the cost is that of the visible ones.
void DrawLine(uint32_t* first, ptrdiff_t stride, int32_t width, int32_t height, int32_t x1,
    int32_t y1, int32_t x2, int32_t y2, uint32_t pixel);

}
