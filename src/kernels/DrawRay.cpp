#include "kernels/DrawRay.h"

#include "kernels/KernelForm.h"

#include <algorithm>
#include <cmath>

namespace pxvis::kernels {

namespace {

// How many steps along an axis surely stay inside, from a position inside: to half a pixel before
// the side, for the positions' rounding errors, below 2^-22 each, add up to less.
int32_t StepsInside(double position, double step, double last)
{
    constexpr double most = 1 << 20;
    const double way = (step < 0 ? position : last - position) - 0.5;
    return way > 0 ? static_cast<int32_t>(std::min(way / std::abs(step), most)) : 0;
}

}

int32_t DrawRay(uint32_t* first, ptrdiff_t stride, int32_t width, int32_t height, double x,
    double y, double stepX, double stepY, int32_t count, const uint32_t* pixels, int32_t pixelCount)
{
    int32_t done = 0;
    if (ChosenKernels() != KernelForm::Scalar && x >= 0 && x <= width - 1 && y >= 0
        && y <= height - 1) {
        const int32_t inside = std::min({ count, pixelCount, StepsInside(x, stepX, width - 1),
            StepsInside(y, stepY, height - 1) });
        for (; done < inside; ++done) {
            x += stepX;
            y += stepY;
            first[static_cast<ptrdiff_t>(y) * stride + static_cast<ptrdiff_t>(x)] = pixels[done];
        }
    }
    // With a colour at least for the next step, which may be the last one.
    const int32_t used = std::min(done, pixelCount - 1);
    return done
        + scalar::DrawRay(first, stride, width, height, x, y, stepX, stepY, count - done,
            pixels + used, pixelCount - used);
}

namespace scalar {

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

}
