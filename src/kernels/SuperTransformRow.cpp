#include "kernels/SuperTransformRow.h"

#include "kernels/Wrapped.h"

namespace pxvis::kernels::scalar {

namespace {

template <typename Entry>
void Row(const SuperTransformPass& pass, const Entry* map, int32_t y)
{
    const int32_t width = pass.width;
    const int32_t centerX = (width + 1) / 2;
    const int32_t centerY = (pass.height + 1) / 2;
    const ptrdiff_t rowStart = ptrdiff_t { pass.height - 1 - y } * width;
    const uint32_t* around = pass.source + rowStart;
    uint32_t* target = pass.target + rowStart;
    const Entry* entry = map + (ptrdiff_t { y } * width + 1) * 2;

    for (int32_t x = 1; x < width - 1; ++x, entry += 2) {
        const int32_t mapX = entry[0];
        const int32_t mapY = entry[1];
        const int32_t turnedX
            = SubtractWrapped(MultiplyWrapped(mapX, pass.cosine), MultiplyWrapped(mapY, pass.sine))
            >> 10;
        const int32_t turnedY
            = AddWrapped(MultiplyWrapped(mapY, pass.cosine), MultiplyWrapped(mapX, pass.sine))
            >> 10;
        const int32_t movedX
            = SubtractWrapped(MultiplyWrapped(turnedX, pass.factorX) >> 10, pass.scrollX);
        const int32_t movedY
            = AddWrapped(MultiplyWrapped(turnedY, pass.factorY) >> 10, pass.scrollY);
        const uint32_t sample
            = SampleSource(pass, centerX + RoundToPixel(movedX, pass.ditherThreshold),
                centerY + RoundToPixel(movedY, pass.ditherThreshold));
        target[x] = FeedbackPixel(pass, around + x, sample);
    }
}

}

void SuperTransformRow(const SuperTransformPass& pass, int32_t y)
{
    if (pass.map16)
        Row(pass, pass.map16, y);
    else
        Row(pass, pass.map32, y);
}

}
