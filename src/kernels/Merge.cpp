#include "kernels/Merge.h"

#include "kernels/ForEachByte.h"

#include <algorithm>

namespace pxvis::kernels::scalar {

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
