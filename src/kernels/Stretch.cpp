#include "kernels/Stretch.h"

#include <algorithm>

namespace pxvis::kernels {

namespace {

constexpr int64_t one = int64_t { 1 } << 32;

}

StretchAxis::StretchAxis(int32_t targetSize, int32_t sourceSize)
    : m_step(sourceSize * one / targetSize)
    , m_last(sourceSize - 1)
{
}

StretchSample StretchAxis::At(int32_t i) const
{
    const int64_t center = i * m_step + m_step / 2 - one / 2;
    const int64_t position = std::clamp<int64_t>(center, 0, m_last * one);
    const auto index = static_cast<int32_t>(position >> 32);
    return { index, std::min(index + 1, m_last), static_cast<uint32_t>(position >> 24 & 0xFF) };
}

void Stretch(uint32_t* target, ptrdiff_t targetStride, int32_t targetWidth, int32_t targetHeight,
    const uint32_t* source, ptrdiff_t sourceStride, int32_t sourceWidth, int32_t sourceHeight)
{
    StretchRows(target, targetStride, targetWidth, targetHeight, source, sourceStride, sourceWidth,
        sourceHeight, 0, targetHeight);
}

namespace scalar {

void StretchRows(uint32_t* target, ptrdiff_t targetStride, int32_t targetWidth,
    int32_t targetHeight, const uint32_t* source, ptrdiff_t sourceStride, int32_t sourceWidth,
    int32_t sourceHeight, int32_t first, int32_t last)
{
    const StretchAxis columns(targetWidth, sourceWidth);
    const StretchAxis rows(targetHeight, sourceHeight);
    for (int32_t y = first; y < last; ++y) {
        const StretchSample v = rows.At(y);
        const uint32_t* upper = source + v.index * sourceStride;
        const uint32_t* lower = source + v.next * sourceStride;
        uint32_t* row = target + (y - first) * targetStride;
        for (int32_t x = 0; x < targetWidth; ++x) {
            const StretchSample h = columns.At(x);
            uint32_t pixel = 0;
            for (int shift = 0; shift < 32; shift += 8) {
                const auto byte = [shift](uint32_t p) { return p >> shift & 0xFF; };
                const uint32_t above = byte(upper[h.index]) * (256 - h.weightOfNext)
                    + byte(upper[h.next]) * h.weightOfNext;
                const uint32_t below = byte(lower[h.index]) * (256 - h.weightOfNext)
                    + byte(lower[h.next]) * h.weightOfNext;
                const uint32_t sum
                    = above * (256 - v.weightOfNext) + below * v.weightOfNext + 0x8000;
                pixel |= sum >> 16 << shift;
            }
            row[x] = pixel;
        }
    }
}

}

}
