#include "kernels/PixelsFromBytes.h"

namespace pxvis::kernels {

void PixelsFromBytes(
    uint32_t* target, ptrdiff_t step, const uint8_t* source, int32_t channels, int32_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t alpha = channels == 4 ? source[3] : 255;
        *target = alpha << 24 | uint32_t { source[0] } << 16 | uint32_t { source[1] } << 8
            | uint32_t { source[2] };
        target += step;
        source += channels;
    }
}

}
