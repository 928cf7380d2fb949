#pragma once

#include <cstddef>
#include <cstdint>

namespace pxvis::image {

// Where a picture's pixels lie; never empty. Owned by the image.
struct Pixels
{
    uint32_t* top; // top left pixel
    ptrdiff_t stride; // in pixels from a row to the one below; negative, since rows lie bottom-up
    int32_t width;
    int32_t height;

    uint32_t* At(int32_t x, int32_t y) const { return top + y * stride + x; }
};

}
