#pragma once

#include "TestFolder.h"
#include "foundation/IOQImage.h"
#include "foundation/OQSiblingModules.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>

namespace fs = std::filesystem;
using Image = std::unique_ptr<IOQImage>;

inline Image MakeImage(int32_t width, int32_t height)
{
    Image image(OQCreateImage());
    REQUIRE(image);
    REQUIRE(image->Create(width, height, 0, 0));
    return image;
}

inline uint32_t PixelAt(IOQImage& image, int32_t x, int32_t y)
{
    const OQSize size = image.GetSize();
    return image.GetBits()[(size.cy - 1 - y) * size.cx + x];
}

inline void SetPixel(IOQImage& image, int32_t x, int32_t y, uint32_t pixel)
{
    const OQSize size = image.GetSize();
    image.GetBits()[(size.cy - 1 - y) * size.cx + x] = pixel;
}

inline std::u16string NameIn(const TestFolder& folder, const char* name)
{
    return (folder / name).u16string();
}

// The smallest rectangle round the pixels that aren't `ground`; all 0 if there are none.
inline OQRect InkOf(IOQImage& image, uint32_t ground)
{
    const OQSize size = image.GetSize();
    OQRect ink { size.cx, size.cy, 0, 0 };
    for (int32_t y = 0; y < size.cy; ++y)
        for (int32_t x = 0; x < size.cx; ++x)
            if (PixelAt(image, x, y) != ground)
                ink = { std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1),
                    std::max(ink.bottom, y + 1) };
    return ink.right ? ink : OQRect {};
}
