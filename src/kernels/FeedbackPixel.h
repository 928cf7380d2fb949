#pragma once

#include <cstddef>
#include <cstdint>

namespace pxvis::kernels {

// What the pixels of one feedback pass share: each new pixel is a sample of the old picture, taken
// elsewhere, softened with the neighbours of its own place, multiplied and added to by channel.
// Both pictures are `width` x `height` pixels, rows bottom-up, and different memory. Row and column
// numbers count from the top left.
struct FeedbackPass
{
    const uint32_t* source = nullptr;
    uint32_t* target = nullptr;
    int32_t width = 0;
    int32_t height = 0;
    bool clips = false; // outside the picture: false: it goes on from the other side, true: black
    int32_t ditherThreshold = 0; // 0 to 31: a position whose fraction is above it is rounded up
    uint16_t multiplier[3] = {}; // blue, green, red; 256 would be 1.0
    int16_t summand[3] = {}; // blue, green, red, in steps of a byte
};

// Of a position in 1/32 pixel.
inline int32_t RoundToPixel(int32_t position, int32_t ditherThreshold)
{
    return (position >> 5) + ((position & 31) > ditherThreshold ? 1 : 0);
}

// The source pixel at any (x, y).
inline uint32_t SampleSource(const FeedbackPass& pass, int32_t x, int32_t y)
{
    const uint32_t width = static_cast<uint32_t>(pass.width);
    const uint32_t height = static_cast<uint32_t>(pass.height);
    if (pass.clips && (static_cast<uint32_t>(x) >= width || static_cast<uint32_t>(y) >= height))
        return 0;
    // Counted in bytes and in 32 bits before it is brought into the picture: far outside, and on
    // any side but the bottom and the right one, the pattern doesn't go on evenly.
    const uint32_t offset
        = (height - static_cast<uint32_t>(y) - 1) * width * 4 + static_cast<uint32_t>(x) * 4;
    const uint32_t index = offset / 4;
    const uint32_t count = width * height;
    return pass.source[index < count ? index : index % count];
}

// The new pixel at (x, y), 1 <= x <= width - 2, 1 <= y <= height - 2, of a sample. `around` is the
// source pixel at (x, y). Alpha is 0.
inline uint32_t FeedbackPixel(const FeedbackPass& pass, const uint32_t* around, uint32_t sample)
{
    const ptrdiff_t width = pass.width;
    const uint32_t corners[4]
        = { around[width - 1], around[width + 1], around[-width - 1], around[-width + 1] };
    uint32_t result = 0;
    for (int channel = 0; channel < 3; ++channel) {
        const int shift = channel * 8;
        uint32_t sum = 16 * ((sample >> shift) & 0xFF);
        for (const uint32_t corner : corners)
            sum += (corner >> shift) & 0xFF;
        // The product wraps in 16 bits: bright pixels under a multiplier above 206 come out dark.
        const uint32_t product = ((sum >> 4) * pass.multiplier[channel]) & 0xFFFF;
        const int32_t value = static_cast<int32_t>(product >> 8) + pass.summand[channel];
        const int32_t byte = value < 0 ? 0 : value > 255 ? 255 : value;
        result |= static_cast<uint32_t>(byte) << shift;
    }
    return result;
}

// A feedback pass leaves the outer pixels out: each becomes a copy of its neighbour inside. A
// picture with a side of 3 or less stays as it is.
void RepairFrame(uint32_t* bits, int32_t width, int32_t height);

}
