#include "kernels/FeedbackPixel.h"

#include <algorithm>

namespace pxvis::kernels {

void RepairFrame(uint32_t* bits, int32_t width, int32_t height)
{
    if (width <= 3 || height <= 3)
        return;
    const auto row = [bits, width](int32_t y) { return bits + ptrdiff_t { y } * width; };
    std::copy_n(row(1), width, row(0));
    std::copy_n(row(height - 2), width, row(height - 1));
    for (int32_t y = 0; y < height; ++y) {
        row(y)[0] = row(y)[1];
        row(y)[width - 1] = row(y)[width - 2];
    }
}

}
