#pragma once

#include <cstddef>
#include <cstdint>

namespace pxvis::image {

// Checked before memory is taken: sizes may come from a stranger's file.
constexpr int32_t kMaxSide = 16384;
constexpr int64_t kMaxPixels = int64_t { 64 } << 20;

constexpr bool IsAllowedSize(int64_t width, int64_t height)
{
    return width >= 1 && height >= 1 && width <= kMaxSide && height <= kMaxSide
        && width * height <= kMaxPixels;
}

// Where a picture's pixels lie; never empty. Owned by the image.
struct Pixels
{
    uint32_t* top; // top left pixel
    ptrdiff_t stride; // in pixels from a row to the one below; negative, since rows lie bottom-up
    int32_t width;
    int32_t height;

    uint32_t* At(int32_t x, int32_t y) const { return top + y * stride + x; }
};

}
