#pragma once

#include <cstddef>
#include <cstdint>

namespace pxvis::kernels {

// Stretches a picture over another size, bilinearly, all four bytes of a pixel alike. The centre of
// target pixel i lies at (i + 1/2) * source / target of the source, held in 1/2^32 pixel and cut
// to the centres of the outer pixels; the four neighbours are weighed in 1/256 and the sum is
// rounded once. Integers only; equal sizes give an exact copy. Strides in pixels as in FillRect;
// all sizes at least 1, those of the source at most 65536. The pictures must not overlap.
void Stretch(uint32_t* target, ptrdiff_t targetStride, int32_t targetWidth, int32_t targetHeight,
    const uint32_t* source, ptrdiff_t sourceStride, int32_t sourceWidth, int32_t sourceHeight);

// Only the rows from `first` to before `last` of the stretched picture; the target is the first
// one. Calls for many rows are cheaper than calls for few.
void StretchRows(uint32_t* target, ptrdiff_t targetStride, int32_t targetWidth,
    int32_t targetHeight, const uint32_t* source, ptrdiff_t sourceStride, int32_t sourceWidth,
    int32_t sourceHeight, int32_t first, int32_t last);

namespace scalar {

void StretchRows(uint32_t* target, ptrdiff_t targetStride, int32_t targetWidth,
    int32_t targetHeight, const uint32_t* source, ptrdiff_t sourceStride, int32_t sourceWidth,
    int32_t sourceHeight, int32_t first, int32_t last);

}

// Where the centre of a target pixel lies along an axis.
struct StretchSample
{
    int32_t index;
    int32_t next; // index + 1, or index at the far edge
    uint32_t weightOfNext; // 0 to 255, in 1/256
};

class StretchAxis
{
public:
    StretchAxis(int32_t targetSize, int32_t sourceSize);

    // Past the target's ends the source's outer pixels go on.
    StretchSample At(int32_t i) const;

private:
    int64_t m_step; // of the source, in 1/2^32 pixel
    int32_t m_last;
};

}
