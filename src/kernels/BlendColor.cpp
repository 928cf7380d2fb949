#include "kernels/BlendColor.h"

#include "kernels/ForEachByte.h"

#include <algorithm>

namespace pxvis::kernels {

// The compiler makes the best of this one and of the average.
void ReplaceColor(uint32_t* target, int32_t count, uint32_t pixel)
{
    for (int32_t i = 0; i < count; ++i)
        target[i] = pixel;
}

void AverageColor(uint32_t* target, int32_t count, uint32_t pixel)
{
    for (int32_t i = 0; i < count; ++i)
        target[i]
            = ForEachByte(target[i], pixel, [](uint32_t a, uint32_t b) { return (a + b) / 2; });
}

namespace scalar {

void AddColor(uint32_t* target, int32_t count, uint32_t pixel)
{
    for (int32_t i = 0; i < count; ++i)
        target[i] = ForEachByte(target[i], pixel,
            [](uint32_t a, uint32_t b) { return std::min<uint32_t>(a + b, 255); });
}

void SubtractColor(uint32_t* target, int32_t count, uint32_t pixel)
{
    for (int32_t i = 0; i < count; ++i)
        target[i] = ForEachByte(
            target[i], pixel, [](uint32_t a, uint32_t b) { return std::max(a, b) - b; });
}

}

}
