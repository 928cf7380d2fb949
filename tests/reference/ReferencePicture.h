#pragma once

#include <cstdint>
#include <string>
#include <vector>

// A picture of a script's: pixels of 0xAARRGGBB, top row first. As a PNG it is twice as high, the
// colours above and the alpha below in grey, so that both can be seen.
struct ReferencePicture
{
    int32_t width = 0;
    int32_t height = 0;
    std::vector<uint32_t> pixels;

    // False if there is no such file or it doesn't have the form above.
    bool Load(const std::string& path);
    bool Save(const std::string& path) const;

    bool operator==(const ReferencePicture&) const = default;

    // Black where both have the same byte, and the brighter the more they differ, but never dark.
    // Of the same size as `other`.
    ReferencePicture DifferenceFrom(const ReferencePicture& other) const;
};
