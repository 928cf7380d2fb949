#pragma once

#include <cstdint>

namespace pxvis::kernels {

// pixels[i] := source[indexes[i]], for the kernels over vectors. One load after the other and
// compiled for any processor: measured, that is never far behind a processor's own gather, and
// often well before it.
void FetchPixels(const uint32_t* source, const int32_t* indexes, int32_t count, uint32_t* pixels);

}
