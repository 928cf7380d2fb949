#pragma once

#include "foundation/OQGeometry.h"
#include "siblings/image/Pixels.h"

namespace pxvis::image {

// What of the rectangle lies inside the other one; empty ones give an empty one.
OQRect Intersection(const OQRect& a, const OQRect& b);
// The smallest rectangle with both; an empty one adds nothing.
OQRect Union(const OQRect& a, const OQRect& b);
bool IsEmpty(const OQRect& rect);
OQRect Bounds(const Pixels& pixels);

// These clip to the pictures, for any coordinates.
void FillRect(const Pixels& target, const OQRect& rect, uint32_t pixel);
void CopyRect(
    const Pixels& target, const Pixels& source, const OQRect& sourceRect, int32_t x, int32_t y);

}
