#include "kernels/Stretch.h"

#include <algorithm>

namespace pxvis::kernels {

namespace {

struct Sample
{
    int32_t index;
    int32_t next; // index + 1, or index at the far edge
    uint32_t weightOfNext; // 0 to 255, in 1/256
};

Sample SampleAt(int32_t i, int32_t targetSize, int32_t sourceSize)
{
    const int64_t one = int64_t { 1 } << 32;
    const int64_t step = sourceSize * one / targetSize;
    const int64_t center = i * step + step / 2 - one / 2;
    const int64_t position = std::clamp<int64_t>(center, 0, (sourceSize - 1) * one);
    const auto index = static_cast<int32_t>(position >> 32);
    return { index, std::min(index + 1, sourceSize - 1),
        static_cast<uint32_t>(position >> 24 & 0xFF) };
}

}

void Stretch(uint32_t* target, ptrdiff_t targetStride, int32_t targetWidth, int32_t targetHeight,
    const uint32_t* source, ptrdiff_t sourceStride, int32_t sourceWidth, int32_t sourceHeight)
{
    StretchRows(target, targetStride, targetWidth, targetHeight, source, sourceStride, sourceWidth,
        sourceHeight, 0, targetHeight);
}

void StretchRows(uint32_t* target, ptrdiff_t targetStride, int32_t targetWidth,
    int32_t targetHeight, const uint32_t* source, ptrdiff_t sourceStride, int32_t sourceWidth,
    int32_t sourceHeight, int32_t first, int32_t last)
{
    for (int32_t y = first; y < last; ++y) {
        const Sample v = SampleAt(y, targetHeight, sourceHeight);
        const uint32_t* upper = source + v.index * sourceStride;
        const uint32_t* lower = source + v.next * sourceStride;
        uint32_t* row = target + (y - first) * targetStride;
        for (int32_t x = 0; x < targetWidth; ++x) {
            const Sample h = SampleAt(x, targetWidth, sourceWidth);
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
