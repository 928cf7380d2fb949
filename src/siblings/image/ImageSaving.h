#pragma once

#include "siblings/image/Pixels.h"

#include <string>

namespace pxvis::image {

// As the operations of IOQImage; the path is UTF-8. May throw std::bad_alloc.
bool SavePng(const Pixels& pixels, const std::string& path, bool opaque);
bool SaveJpeg(const Pixels& pixels, const std::string& path, int32_t quality);

}
