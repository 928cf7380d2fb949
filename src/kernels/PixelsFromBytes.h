#pragma once

#include <cstddef>
#include <cstdint>

namespace pxvis::kernels {

// Makes pixels of `count` byte groups: red, green, blue and, with `channels` 4, alpha, which is 255
// with 3. Target pixels lie `step` apart, which turns or mirrors a picture on the way. They don't
// overlap the source.
void PixelsFromBytes(
    uint32_t* target, ptrdiff_t step, const uint8_t* source, int32_t channels, int32_t count);

}
