#pragma once

#include <cstdint>

namespace pxvis::kernels {

// Blends one pixel's bytes into `count` pixels, the alpha byte like the colours. Further turns of
// the same blend come to rest: after 255 of them nothing changes any more.

// target := pixel
void ReplaceColor(uint32_t* target, int32_t count, uint32_t pixel);

// Each byte := min(target + pixel, 255).
void AddColor(uint32_t* target, int32_t count, uint32_t pixel);

// Each byte := max(target - pixel, 0).
void SubtractColor(uint32_t* target, int32_t count, uint32_t pixel);

// Each byte := (target + pixel) / 2, truncated.
void AverageColor(uint32_t* target, int32_t count, uint32_t pixel);

namespace scalar {

void AddColor(uint32_t* target, int32_t count, uint32_t pixel);
void SubtractColor(uint32_t* target, int32_t count, uint32_t pixel);

}

}
