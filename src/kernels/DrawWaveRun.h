#pragma once

#include <cstddef>
#include <cstdint>

namespace pxvis::kernels {

// Where the run of a wave stands: across the line at (x, y), which rises by the angle of `sine` and
// `cosine` (0 or more).
struct WaveRunPlace
{
    int64_t x = 0; // pixels, at most 2^40 either way
    int64_t y = 0;
    double sine = 0;
    double cosine = 1;
};

// Paints the offsets `from` to from + count - 1 of a run, 2 pixels wide each, in the colours of
// `pixels`. An offset's way along x and y is truncate(factor * |offset| + 0.5); positions are
// brought into 4 to width - 4 and height - 4, where the last one painted stays. Where a picture has
// no such place, nothing outside it is written. `first` and `stride` as in FillRect; |offset| at
// most 2^40.
void DrawWaveRun(uint32_t* first, ptrdiff_t stride, int32_t width, int32_t height,
    const WaveRunPlace& place, int64_t from, int32_t count, const uint32_t* pixels);

}
