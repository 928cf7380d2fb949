#pragma once

#include "engine2d/CVisFlashMeter.h"

#include <algorithm>
#include <cstdint>
#include <vector>

// A picture of its own pixels, top row first.
struct FlashPicture
{
    // A cell is one pixel, or 10 x 10 of them.
    static constexpr int32_t columns = CVisFlashGrid::longSide;
    static constexpr int32_t rows = 36;

    explicit FlashPicture(uint32_t color = 0, int32_t scale = 1)
        : width(columns * scale)
        , height(rows * scale)
        , pixels(static_cast<size_t>(width) * static_cast<size_t>(height), color)
    {
    }

    uint32_t& At(int32_t x, int32_t y) { return pixels[static_cast<size_t>(y * width + x)]; }

    // The picture's first `count` pixels, row after row.
    FlashPicture& Fill(int32_t count, uint32_t color)
    {
        std::fill(pixels.begin(), pixels.begin() + count, color);
        return *this;
    }

    CVisPixels View() const { return { pixels.data(), width, width, height }; }

    int32_t width;
    int32_t height;
    std::vector<uint32_t> pixels;
};

// When picture k of `rate` a second is shown.
inline int64_t FlashTime(int64_t k, int64_t rate)
{
    return k * CVisFlashMeter::second / rate;
}
