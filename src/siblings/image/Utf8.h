#pragma once

#include "foundation/OQChar.h"

#include <string>

namespace pxvis::image {

// The text up to its 0 or `maxUnits`, as UTF-8; half a surrogate pair becomes U+FFFD.
std::string Utf8(const OQChar* text, size_t maxUnits);

}
