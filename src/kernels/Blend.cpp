#include "kernels/Blend.h"

namespace pxvis::kernels::scalar {

void BlendRow(uint32_t* target, const uint32_t* source, int32_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t alpha = source[i] >> 24;
        uint32_t pixel = target[i] & 0xFF000000;
        for (int channel = 0; channel < 3; ++channel) {
            const uint32_t over = source[i] >> 8 * channel & 0xFF;
            const uint32_t there = target[i] >> 8 * channel & 0xFF;
            pixel |= (over * alpha + there * (255 - alpha) + 127) / 255 << 8 * channel;
        }
        target[i] = pixel;
    }
}

}
