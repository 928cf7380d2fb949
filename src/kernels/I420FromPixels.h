#pragma once

#include <cstdint>

namespace pxvis::kernels {

// Two rows of a picture in I420, the format that video encoders take: one luma byte a pixel, and of
// each chroma one byte for two by two pixels.
struct I420Rows
{
    uint8_t* upperLuma; // width bytes
    uint8_t* lowerLuma;
    uint8_t* cb; // width / 2 bytes
    uint8_t* cr;
};

// Converts two rows of pixels 0xAARRGGBB, A ignored, to the colours of ITU-R BT.709 in the limited
// range: with R, G and B from 0 to 1 and L = 0.2126 R + 0.7152 G + 0.0722 B
//     luma = 16 + 219 L,  Cb = 128 + 224 (B - L) / 1.8556,  Cr = 128 + 224 (R - L) / 1.5748
// to within 0.52; greys have no chroma. Chroma lies on the left pixel of each pair, between the
// rows, as MPEG-2 has it and H.264 and VP9 players expect: of the pixels from the one before to the
// one behind, weighed 1, 2, 1, the row's first pixel standing in for the one before it. The width
// is even.
void I420FromPixels(
    const I420Rows& target, const uint32_t* upper, const uint32_t* lower, int32_t width);

namespace scalar {

void I420FromPixels(
    const I420Rows& target, const uint32_t* upper, const uint32_t* lower, int32_t width);

}

// The weights of red, green and blue, in 1/2^16 of a step of the result. Those of a chroma add up
// to 0.
namespace i420 {

constexpr uint32_t lumaRed = 11966;
constexpr uint32_t lumaGreen = 40254;
constexpr uint32_t lumaBlue = 4064;
constexpr uint32_t chromaOwn = 28784; // blue for Cb, red for Cr
constexpr uint32_t cbRed = 6596; // subtracted, as all below
constexpr uint32_t cbGreen = 22188;
constexpr uint32_t crGreen = 26145;
constexpr uint32_t crBlue = 2639;

// In 1/2^8 step, 1/2 for rounding included, and for luma what three cut products lack on average.
constexpr uint32_t lumaBase = 16 * 256 + 128 + 1;
constexpr uint32_t chromaBase = 128 * 256 + 128;

}

}
