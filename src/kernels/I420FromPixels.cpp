#include "kernels/I420FromPixels.h"

namespace pxvis::kernels::scalar {

namespace {

struct Rgb
{
    uint32_t red;
    uint32_t green;
    uint32_t blue;
};

Rgb RgbOf(uint32_t pixel)
{
    return { pixel >> 16 & 0xFF, pixel >> 8 & 0xFF, pixel & 0xFF };
}

// Each product in whole 1/2^8 step.
uint8_t Luma(uint32_t pixel)
{
    const Rgb p = RgbOf(pixel);
    const uint32_t sum = (p.red * i420::lumaRed >> 8) + (p.green * i420::lumaGreen >> 8)
        + (p.blue * i420::lumaBlue >> 8) + i420::lumaBase;
    return static_cast<uint8_t>(sum >> 8);
}

void Add(Rgb& sum, uint32_t pixel, uint32_t weight)
{
    const Rgb p = RgbOf(pixel);
    sum.red += p.red * weight;
    sum.green += p.green * weight;
    sum.blue += p.blue * weight;
}

// Of colours eight times as large.
uint8_t Chroma(
    uint32_t own, uint32_t first, uint32_t firstWeight, uint32_t second, uint32_t secondWeight)
{
    const uint32_t sum = i420::chromaBase + (own * i420::chromaOwn >> 11)
        - (first * firstWeight >> 11) - (second * secondWeight >> 11);
    return static_cast<uint8_t>(sum >> 8);
}

}

void I420FromPixels(
    const I420Rows& target, const uint32_t* upper, const uint32_t* lower, int32_t width)
{
    for (int32_t x = 0; x < width; ++x) {
        target.upperLuma[x] = Luma(upper[x]);
        target.lowerLuma[x] = Luma(lower[x]);
    }
    for (int32_t x = 0; x < width; x += 2) {
        const int32_t before = x > 0 ? x - 1 : 0;
        Rgb sum = {};
        const auto addRow = [&](const uint32_t* row) {
            Add(sum, row[before], 1);
            Add(sum, row[x], 2);
            Add(sum, row[x + 1], 1);
        };
        addRow(upper);
        addRow(lower);
        target.cb[x / 2] = Chroma(sum.blue, sum.red, i420::cbRed, sum.green, i420::cbGreen);
        target.cr[x / 2] = Chroma(sum.red, sum.green, i420::crGreen, sum.blue, i420::crBlue);
    }
}

}
