#pragma once

#include <cstdint>

namespace pxvis::maths {

// x = quadrant * pi/2 + hi + lo, |hi + lo| <= pi/4, the quadrant modulo 4.
struct ReducedAngle
{
    double hi;
    double lo;
    uint64_t quadrant;
};

// For x from 0.5 up to the largest double, correct to 2^-70 of the result or better. Slow: for the
// few arguments that are too large, or too near a multiple of pi/2, for a reduction in doubles.
// Infinity and NaN give a meaningless finite angle.
ReducedAngle ReduceHugeAngle(double x);

}
