#pragma once

#include "siblings/image/Pixels.h"

#include <string>

namespace pxvis::image {

// As IOQImage::SavePng; the path is UTF-8. May throw std::bad_alloc.
bool SavePng(const Pixels& pixels, const std::string& path, bool opaque);

}
