#include "kernels/DrawRay.h"

#include <algorithm>

namespace pxvis::kernels {

int32_t DrawRay(uint32_t* first, ptrdiff_t stride, int32_t width, int32_t height, double x,
    double y, double stepX, double stepY, int32_t count, const uint32_t* pixels, int32_t pixelCount)
{
    const double right = width - 1;
    const double bottom = height - 1;
    int32_t i = 0;
    for (; i < count; ++i) {
        x += stepX;
        y += stepY;
        if (x > right || x < 0 || y > bottom || y < 0)
            break;
        first[static_cast<ptrdiff_t>(y) * stride + static_cast<ptrdiff_t>(x)]
            = pixels[std::min(i, pixelCount - 1)];
    }
    return i;
}

}
