#pragma once

#include <cstdint>

namespace pxvis::kernels {

// Lays a colour over `count` pixels as far as each is covered, 0 to 255: the three colour bytes
// become (target * (255 - coverage) + colour * coverage) / 255, rounded; the alpha byte stays.
// `pixel`: the colour as a pixel, its alpha byte ignored.
void BlendCoverage(uint32_t* target, const uint8_t* coverage, int32_t count, uint32_t pixel);

// Lays pixels whose colours are already multiplied by their alpha over `count` others: the colour
// bytes become source + target * (255 - alpha) / 255, rounded and at most 255; alpha stays.
void BlendOver(uint32_t* target, const uint32_t* source, int32_t count);

namespace scalar {

void BlendCoverage(uint32_t* target, const uint8_t* coverage, int32_t count, uint32_t pixel);
void BlendOver(uint32_t* target, const uint32_t* source, int32_t count);

}

}
