#include "components/PolarPoint.h"

#include "kernels/Maths.h"

#include <cmath>

namespace {

// Of a full turn, to the digits that pictures depend on.
constexpr double radians = 6.2831855;

}

PicturePoint PolarPoint(int32_t width, int32_t height, double turns, double distance)
{
    const double halfWidth = width * 0.5;
    const double halfHeight = height * 0.5;
    const double radius = std::sqrt(halfWidth * halfWidth + halfHeight * halfHeight) + 1.0;
    const double length = radius * distance;
    const double angle = turns * radians;
    return { pxvis::maths::Cos(angle) * length + halfWidth,
        halfHeight - pxvis::maths::Sin(angle) * length };
}
