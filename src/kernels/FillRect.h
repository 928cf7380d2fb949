#pragma once

#include <cstddef>
#include <cstdint>

namespace pxvis::kernels {

// Sets a block of width x height pixels, none if either is below 1. `first` is the block's top left
// pixel; the row below lies `stride` pixels further on, before it in a picture stored bottom-up.
void FillRect(uint32_t* first, ptrdiff_t stride, int32_t width, int32_t height, uint32_t pixel);

}
