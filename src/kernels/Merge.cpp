#include "kernels/Merge.h"

#include <algorithm>

namespace pxvis::kernels {

namespace {

template <typename ByteOperation>
uint32_t ForEachByte(uint32_t a, uint32_t b, ByteOperation operation)
{
    uint32_t result = 0;
    for (int shift = 0; shift < 32; shift += 8)
        result |= operation((a >> shift) & 0xFF, (b >> shift) & 0xFF) << shift;
    return result;
}

}

void MergeReplace(uint32_t* target, const uint32_t* source, int32_t count, uint32_t transparent)
{
    for (int32_t i = 0; i < count; ++i) {
        if (source[i] != transparent)
            target[i] = source[i];
    }
}

void MergeBlend(uint32_t* target, const uint32_t* source, int32_t count, uint32_t transparent)
{
    for (int32_t i = 0; i < count; ++i) {
        if (source[i] != transparent)
            target[i] = ForEachByte(
                target[i], source[i], [](uint32_t a, uint32_t b) { return (a + b) / 2; });
    }
}

void MergeAdd(uint32_t* target, const uint32_t* source, int32_t count, uint32_t transparent)
{
    for (int32_t i = 0; i < count; ++i) {
        if (source[i] != transparent)
            target[i] = ForEachByte(target[i], source[i],
                [](uint32_t a, uint32_t b) { return std::min<uint32_t>(a + b, 255); });
    }
}

}
