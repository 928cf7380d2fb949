#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pxvis::image {

// What of a picture file goes to which decoder.
struct PictureFile
{
    const char* decoder = nullptr; // the system's name for it
    std::string head; // goes first, in place of what the file holds there
    std::vector<std::string_view> parts; // of the file, which must outlive them
    uint32_t scans = 1; // how often at most a decoder goes over the whole picture
};

// Looks at a file from a stranger before a decoder does. Knows PNG, JPEG, GIF, BMP, TIFF, ICO and
// WebP by their first bytes. Leaves out what the picture doesn't need and what could be made to
// cost without end: further frames, and the texts and profiles of a PNG, which are unpacked and
// kept. False for all else, so drawings that may lead to other files reach no decoder; for a file
// that ends early, where decoders would give half a picture; and for a size that isn't allowed, as
// far as decoders don't tell it in time. May throw std::bad_alloc.
bool Examine(std::string_view bytes, PictureFile& file);

}
