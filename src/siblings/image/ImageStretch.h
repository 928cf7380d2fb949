#pragma once

#include "foundation/OQGeometry.h"
#include "kernels/Resample.h"
#include "siblings/image/Pixels.h"

#include <array>
#include <vector>

namespace pxvis::image {

// Where a picture goes. Wide, since a rectangle may have any corners.
struct Placement
{
    int64_t left;
    int64_t top;
    int64_t width;
    int64_t height;
};

// The whole rectangle, or its largest centred part that has the shape of the picture. The rectangle
// isn't empty.
Placement PlacementIn(const OQRect& rect, const Pixels& picture, bool keepShape);

// What of the place lies inside a target of that size; empty if nothing does.
OQRect VisiblePart(const Placement& place, int32_t width, int32_t height);

// Stretches pictures smoothly. Keeps its memory for the next time, and what it has worked out for
// as long as sizes and places stay the same. One thread at a time. May throw std::bad_alloc.
class ImageStretch
{
public:
    // Fills the whole target.
    void Store(const Pixels& target, const Pixels& source);

    // Fills the target with the part of the stretched picture that lies in `visible`, which has the
    // target's size and lies inside the place.
    void StorePart(
        const Pixels& target, const Pixels& source, const Placement& place, const OQRect& visible);

    // Lays the picture over the target by its alpha, clipped; the target's alpha bytes stay.
    void Blend(const Pixels& target, const Pixels& source, const Placement& place);

private:
    void PrepareColumns(int64_t firstColumn, int32_t count, int64_t width, int32_t sourceWidth);
    const uint32_t* SumsOfRow(const Pixels& source, int64_t row, int64_t height);
    const uint16_t* MixedRow(const Pixels& source, int32_t row);

    // Columns, and what they were worked out for.
    std::vector<kernels::ResampleSpan> m_spans;
    std::vector<uint32_t> m_weights;
    int64_t m_firstColumn = 0;
    int64_t m_width = 0;
    int32_t m_sourceWidth = 0;

    std::vector<uint32_t> m_rowWeights;
    std::vector<uint32_t> m_sums;
    std::vector<uint32_t> m_row; // stretched

    // The last source rows that were mixed: neighbours in the target share them.
    struct Mixed
    {
        std::vector<uint16_t> values;
        int32_t row = -1;
    };

    std::array<Mixed, 2> m_mixed;
};

}
