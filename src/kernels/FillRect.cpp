#include "kernels/FillRect.h"

namespace pxvis::kernels {

void FillRect(uint32_t* first, ptrdiff_t stride, int32_t width, int32_t height, uint32_t pixel)
{
    for (int32_t y = 0; y < height; ++y) {
        uint32_t* row = first + y * stride;
        for (int32_t x = 0; x < width; ++x)
            row[x] = pixel;
    }
}

}
