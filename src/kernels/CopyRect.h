#pragma once

#include <cstddef>
#include <cstdint>

namespace pxvis::kernels {

// Copies a block of width x height pixels, nothing if either is below 1. The pointers are the
// blocks' top left pixels, strides in pixels as in FillRect. The blocks may overlap inside one
// picture (then the strides are equal): the result is as if all had been read first.
void CopyRect(uint32_t* target, ptrdiff_t targetStride, const uint32_t* source,
    ptrdiff_t sourceStride, int32_t width, int32_t height);

}
