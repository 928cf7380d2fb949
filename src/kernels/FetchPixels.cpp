#include "kernels/FetchPixels.h"

namespace pxvis::kernels {

void FetchPixels(const uint32_t* source, const int32_t* indexes, int32_t count, uint32_t* pixels)
{
    int32_t i = 0;
    for (; i + 4 <= count; i += 4) {
        const uint32_t a = source[static_cast<uint32_t>(indexes[i])];
        const uint32_t b = source[static_cast<uint32_t>(indexes[i + 1])];
        const uint32_t c = source[static_cast<uint32_t>(indexes[i + 2])];
        const uint32_t d = source[static_cast<uint32_t>(indexes[i + 3])];
        pixels[i] = a;
        pixels[i + 1] = b;
        pixels[i + 2] = c;
        pixels[i + 3] = d;
    }
    for (; i < count; ++i)
        pixels[i] = source[static_cast<uint32_t>(indexes[i])];
}

}
