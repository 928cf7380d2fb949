#pragma once

#include "foundation/OQGeometry.h"
#include "siblings/image/Pixels.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace pxvis::image {

class TextLayout;

// Where a line begins in a block: the low two bits of an alignment are 0 left, 1 centre, 2 right.
// Of what is wider than the room, the middle or the end is kept in its place.
int32_t HorizontalOffset(int32_t alignment, int32_t room, int32_t width);

// What the lines of a layout cover of their block, from its top left corner.
OQRect InkOf(const TextLayout& layout, int32_t alignment);

// How far a text covers each pixel, and the pixels of its coloured characters, such as emoji: what
// is left of a layout for the frames that only blend it.
class TextMask
{
public:
    // The part of the block that the mask holds; empty at first.
    const OQRect& Area() const { return m_area; }

    // Under the lock of ImageText. Gives what that cost, in units of about a nanosecond. Past a
    // limit of its own the rest of the text is left out.
    int64_t Render(const TextLayout& layout, int32_t alignment, const OQRect& area);

    // Blends the part that lies in `part`, which is within the area, with the block's corner at
    // (x, y) of the target; all of it lies in the target.
    void Blend(
        const Pixels& target, const OQRect& part, int32_t x, int32_t y, uint32_t pixel) const;

    size_t Bytes() const;
    void Clear();

private:
    OQRect m_area;
    int32_t m_stride = 0; // bytes
    std::vector<uint8_t> m_coverage;
    OQRect m_colorArea; // within the area; empty: no coloured character
    std::vector<uint32_t> m_colors; // multiplied by their alpha
};

}
