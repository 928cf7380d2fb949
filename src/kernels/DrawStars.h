#pragma once

#include <cstdint>

namespace pxvis::kernels {

struct Star
{
    int32_t x; // from the picture's middle; where it is seen at a depth of 512
    int32_t y;
    int32_t z; // depth
};

struct StarView
{
    uint32_t* bits; // of the picture, rows bottom-up
    int32_t width; // pixels, 1 or more
    int32_t height;
    const uint32_t* pixels; // 256, from near to far
    int32_t farthest; // the depth behind the last pixel; 0: stars are not seen
    int32_t speed; // depth that a star loses
};

// Draws each star as one pixel at (x, y) * 512 / z from the middle and moves it on. Stars that are
// outside the picture, or whose depth isn't above 0, are taken out; the others keep their order.
// Gives the number that is left. Arithmetic wraps at 32 bits.
int32_t DrawStars(Star* stars, int32_t count, const StarView& view);

}
