#pragma once

#include "foundation/OQGeometry.h"

#include <cstdint>

class IOQImage;

// What a window draws with, for the length of one OnPaint. Coordinates are device pixels of the
// client area; what lies outside is clipped.
class IOQPaint
{
public:
    virtual void FillRect(const OQRect& rect, uint32_t color) = 0; // 0x00RRGGBB
    // Stretches the picture over the rectangle, bilinearly; its alpha doesn't count. False, and
    // nothing drawn, for an empty picture or rectangle or without memory.
    virtual bool DrawImage(IOQImage& image, const OQRect& rect) = 0;

protected:
    ~IOQPaint() = default;
};
