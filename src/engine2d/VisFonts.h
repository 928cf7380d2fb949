#pragma once

#include "foundation/OQStringArray.h"

// The font families that texts can be drawn with, sorted. False without the image module.
bool VisListFonts(OQStringArray& fonts);

// The choices of a font row: "DEFAULT" and the families, each followed by a "|". Worked out at the
// first call. Any thread.
const OQString& VisFontPresets();
