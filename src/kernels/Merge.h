#pragma once

#include <cstdint>

namespace pxvis::kernels {

// Merges `count` pixels of `source` into `target`. Pixels of the source that equal `transparent` in
// all 32 bits leave the target as it is. The alpha byte is treated like the colours.

// target := source
void MergeReplace(uint32_t* target, const uint32_t* source, int32_t count, uint32_t transparent);

// Each byte := (target + source) / 2, truncated.
void MergeBlend(uint32_t* target, const uint32_t* source, int32_t count, uint32_t transparent);

// Each byte := min(target + source, 255).
void MergeAdd(uint32_t* target, const uint32_t* source, int32_t count, uint32_t transparent);

namespace scalar {

void MergeReplace(uint32_t* target, const uint32_t* source, int32_t count, uint32_t transparent);
void MergeBlend(uint32_t* target, const uint32_t* source, int32_t count, uint32_t transparent);
void MergeAdd(uint32_t* target, const uint32_t* source, int32_t count, uint32_t transparent);

}

}
