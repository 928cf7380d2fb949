#pragma once

#include <cstdint>

namespace pxvis {

// A finished picture: rows bottom-up with no padding, a pixel 0x00RRGGBB as an integer, whose top
// byte is ignored. Borrowed for the length of a call.
struct PresenterPicture
{
    const uint32_t* bits;
    int32_t width;
    int32_t height;
};

}
