#pragma once

#include "foundation/IOQTools.h"

// 0xRRGGBB, in the order of OQThemeColor.
inline constexpr uint32_t kDarkThemeColors[OQThemeColorCount] = {
    0x1B1D21, // window
    0xE6E7EA, // text on it
    0x2A2D33, // control
    0xECEDF0, // text on it
    0x454A53, // border
    0x131417, // page
    0x3B73D9, // highlight
    0xFFFFFF, // text on it
    0x868B95, // disabled text
    0x7FB0FF, // link
    0xFFB454, // warning
    0xDDDFE3, // text on a page
};

inline constexpr uint32_t kLightThemeColors[OQThemeColorCount] = {
    0xF3F4F6,
    0x1C1E22,
    0xFFFFFF,
    0x1C1E22,
    0xC3C7CE,
    0xFFFFFF,
    0x2F66C9,
    0xFFFFFF,
    0x6B707A,
    0x1F5FBF,
    0xA85B00,
    0x23262B,
};
