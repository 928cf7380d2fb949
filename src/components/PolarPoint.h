#pragma once

#include <cstdint>

// In pixels from the top left of a picture.
struct PicturePoint
{
    double x = 0;
    double y = 0;
};

// The point at `turns` full turns, counter-clockwise from the right, and `distance` from the middle
// of the picture, where 1 is half its diagonal and a pixel.
PicturePoint PolarPoint(int32_t width, int32_t height, double turns, double distance);
