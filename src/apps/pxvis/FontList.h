#pragma once

#include "foundation/OQStringArray.h"

namespace pxvis {

// The font families that texts can be drawn with, sorted. False without the image module.
bool ListFonts(OQStringArray& fonts);

}
