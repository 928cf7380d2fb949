#pragma once

#include "kernels/MapPoints.h"

#include <cstdint>

// What the maps of the transforms have in common: positions told by a distance from a centre and an
// angle around it.
namespace PolarTransform {

// 16-bit entries in 1/32 pixel serve every picture that a window asks for. A larger picture, made
// only in files, would wrap in them and takes 32 bits.
bool TakesSmallEntries(int32_t width, int32_t height);

// The circle through the corners of an area with these half sides, in pixels, with its centre at
// (x, y). Angles come in steps of 1/8192 turn.
pxvis::kernels::CircleDirections Circle(
    int32_t halfWidth, int32_t halfHeight, float centerX, float centerY);

}
