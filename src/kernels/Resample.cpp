#include "kernels/Resample.h"

#include <algorithm>

namespace pxvis::kernels {

namespace {

constexpr int32_t kOne = 65536;

uint32_t Value(uint32_t sum)
{
    return (sum + kOne / 2) / kOne;
}

}

int32_t MaxResampleCount(int64_t targetSize, int32_t sourceSize)
{
    return static_cast<int32_t>(sourceSize / targetSize) + 2;
}

ResampleSpan ResampleWeights(uint32_t* weights, int64_t i, int64_t targetSize, int32_t sourceSize)
{
    if (targetSize >= sourceSize) {
        // In half target pixels, of which a source pixel has 2 * targetSize.
        const int64_t unit = 2 * targetSize;
        const int64_t center = std::clamp<int64_t>(
            (2 * i + 1) * sourceSize - targetSize, 0, (sourceSize - int64_t { 1 }) * unit);
        const auto first = static_cast<int32_t>(center / unit);
        const auto weightOfNext = static_cast<uint32_t>(center % unit * kOne / unit);
        weights[0] = kOne - weightOfNext;
        if (weightOfNext == 0)
            return { first, 1 };
        weights[1] = weightOfNext;
        return { first, 2 };
    }
    // In target pixels' shares of a source pixel: a source pixel is targetSize long, a target one
    // sourceSize. The weights are differences of one rounded sum, so none is lost.
    const int64_t start = i * sourceSize;
    const int64_t end = start + sourceSize;
    const auto first = static_cast<int32_t>(start / targetSize);
    const auto last = static_cast<int32_t>((end - 1) / targetSize);
    int64_t before = 0;
    for (int32_t k = first; k <= last; ++k) {
        const int64_t covered = std::min((k + int64_t { 1 }) * targetSize, end) - start;
        const int64_t upTo = covered * kOne / sourceSize;
        weights[k - first] = static_cast<uint32_t>(upTo - before);
        before = upTo;
    }
    return { first, last - first + 1 };
}

void ResampleRow(uint16_t* target, const uint32_t* source, const ResampleSpan* spans,
    const uint32_t* weights, int32_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        uint32_t sums[4] = {}; // at most 65025 * 65536: below 2^32, and so is half a unit more
        for (int32_t k = 0; k < spans[i].count; ++k) {
            const uint32_t pixel = source[spans[i].first + k];
            const uint32_t alpha = pixel >> 24;
            const uint32_t weight = *weights++;
            sums[0] += (pixel & 0xFF) * alpha * weight;
            sums[1] += (pixel >> 8 & 0xFF) * alpha * weight;
            sums[2] += (pixel >> 16 & 0xFF) * alpha * weight;
            sums[3] += 255 * alpha * weight;
        }
        for (int channel = 0; channel < 4; ++channel)
            *target++ = static_cast<uint16_t>(Value(sums[channel]));
    }
}

void ResampleAddRow(uint32_t* sums, const uint16_t* row, uint32_t weight, int32_t count)
{
    for (int32_t i = 0; i < 4 * count; ++i)
        sums[i] += row[i] * weight;
}

void ResampleStoreRow(uint32_t* target, const uint32_t* sums, int32_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t alpha = Value(sums[4 * i + 3]);
        uint32_t pixel = (alpha + 127) / 255 << 24;
        if (pixel)
            for (int channel = 0; channel < 3; ++channel)
                pixel |= std::min((Value(sums[4 * i + channel]) * 255 + alpha / 2) / alpha, 255u)
                    << 8 * channel;
        target[i] = pixel;
    }
}

}
