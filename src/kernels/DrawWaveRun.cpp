#include "kernels/DrawWaveRun.h"

#include <algorithm>
#include <cstdlib>

namespace pxvis::kernels {

namespace {

constexpr int64_t margin = 4;

int64_t Limited(int64_t position, int32_t side)
{
    return std::min<int64_t>(std::max(position, margin), side - margin);
}

}

void DrawWaveRun(uint32_t* first, ptrdiff_t stride, int32_t width, int32_t height,
    const WaveRunPlace& place, int64_t from, int32_t count, const uint32_t* pixels)
{
    for (int32_t i = 0; i < count; ++i) {
        const int64_t offset = from + i;
        const auto length = static_cast<double>(std::abs(offset));
        const auto across = static_cast<int64_t>(place.sine * length + 0.5);
        const auto along = static_cast<int64_t>(place.cosine * length + 0.5);
        const bool above = offset > 0;
        const int64_t x = Limited(above ? place.x + across : place.x - across, width);
        const int64_t y = Limited(above ? place.y - along : place.y + along, height);
        // Only in a picture of less than 4 pixels a side.
        if (y < 0)
            continue;
        uint32_t* row = first + y * stride;
        if (x >= 0)
            row[x] = pixels[i];
        if (x + 1 >= 0)
            row[x + 1] = pixels[i];
    }
}

}
