#pragma once

#include <cstdint>

namespace pxvis::kernels {

// A colour is 0x00BBGGRR, a pixel 0xAARRGGBB. Nothing else knows how the two differ. The pixel's
// alpha is 0; the colour's top byte is ignored.
constexpr uint32_t PixelFromColor(uint32_t color)
{
    return (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF);
}

}
