#pragma once

#include <cstdint>

namespace pxvis::kernels {

// The pixel whose four bytes are `operation` of those of a and b.
template <typename ByteOperation>
uint32_t ForEachByte(uint32_t a, uint32_t b, ByteOperation operation)
{
    uint32_t result = 0;
    for (int shift = 0; shift < 32; shift += 8)
        result |= operation((a >> shift) & 0xFF, (b >> shift) & 0xFF) << shift;
    return result;
}

}
