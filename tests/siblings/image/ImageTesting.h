#pragma once

#include "foundation/IOQImage.h"
#include "foundation/OQSiblingModules.h"

#include <doctest/doctest.h>

#include <filesystem>
#include <iterator>
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

struct Folder
{
    fs::path path;

    Folder()
    {
        std::string name = (fs::temp_directory_path() / "pxvis-test-XXXXXX").string();
        path = mkdtemp(name.data());
    }

    ~Folder() { fs::remove_all(path); }

    std::u16string Name(const char* name) const { return (path / name).u16string(); }

    size_t Count() const
    {
        return static_cast<size_t>(std::distance(fs::directory_iterator(path), {}));
    }
};
