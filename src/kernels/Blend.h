#pragma once

#include <cstdint>

namespace pxvis::kernels {

// Lays a row of pixels 0xAARRGGBB over what is there by their alpha, each channel rounded to the
// nearest value; the target's alpha bytes stay. The rows don't overlap.
void BlendRow(uint32_t* target, const uint32_t* source, int32_t count);

namespace scalar {

void BlendRow(uint32_t* target, const uint32_t* source, int32_t count);

}

}
