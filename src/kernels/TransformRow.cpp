#include "kernels/TransformRow.h"

#include "kernels/Wrapped.h"

namespace pxvis::kernels::scalar {

namespace {

template <typename Entry>
void Row(const TransformPass& pass, const Entry* map, int32_t y, const TransformRowStart& start)
{
    const int32_t width = pass.width;
    const int32_t height = pass.height;
    const uint32_t threshold = static_cast<uint32_t>(pass.ditherThreshold);
    const auto roundToPixel = [threshold](Entry position) {
        return static_cast<int32_t>((position >> 5) + ((position & 31u) > threshold ? 1 : 0));
    };

    const int64_t rowStart = int64_t { height - 1 - y } * width;
    const uint32_t* around = pass.source + rowStart;
    uint32_t* target = pass.target + rowStart;
    const Entry* entry = map + (int64_t { y } * width + pass.left) * 2;

    const int32_t moveY = SubtractWrapped(start.offsetY, pass.scrollY);
    int32_t offsetX = pass.zoomX;
    int32_t phaseX = start.phaseX;

    for (int32_t x = pass.left; x < pass.right; ++x, entry += 2) {
        const int32_t sourceX
            = AddWrapped(SubtractWrapped(roundToPixel(entry[0]), pass.scrollX), offsetX);
        const int32_t sourceY = AddWrapped(roundToPixel(entry[1]), moveY);

        phaseX = AddWrapped(phaseX, pass.zoomStepX);
        if (phaseX > 1024) {
            phaseX -= 1024;
            offsetX = SubtractWrapped(offsetX, 1);
        }

        uint32_t sample = 0;
        if (sourceX >= 0 && sourceX < width && sourceY >= 0 && sourceY < height)
            sample = pass.source[int64_t { height - 1 - sourceY } * width + sourceX];

        const uint32_t left = around[x - 1];
        const uint32_t right = around[x + 1];
        const uint32_t up = around[x + width];
        const uint32_t down = around[x - width];
        uint32_t result = 0;
        for (int channel = 0; channel < 4; ++channel) {
            const int shift = channel * 8;
            const uint32_t sum = ((left >> shift) & 0xFF) + ((right >> shift) & 0xFF)
                + ((up >> shift) & 0xFF) + ((down >> shift) & 0xFF)
                + 16 * ((sample >> shift) & 0xFF);
            // The product wraps in 16 bits: bright pixels under a multiplier above 206 come out
            // dark.
            const uint32_t product = ((sum >> 4) * pass.multiplier[channel]) & 0xFFFF;
            result |= (product >> 8) << shift;
        }
        target[x] = result;
    }
}

}

void TransformRow(const TransformPass& pass, int32_t y, const TransformRowStart& start)
{
    if (pass.map16)
        Row(pass, pass.map16, y, start);
    else
        Row(pass, pass.map32, y, start);
}

}
