#pragma once

#include "kernels/MathsReduce.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace pxvis::maths {

// What MathsTemplate asks of a lane type, here for one double.
//
// Numbers (F) have + - * /, bits (U) have + - & | ^, with their usual meaning in every lane, and
// these functions. Each is exact or correctly rounded on every processor, and no more may be
// added that is not: no fused multiply-add, rounding, minimum, or conversion between the two.
struct OneLane
{
    using F = double;
    using U = uint64_t;
    using M = bool;

    static F Set(double value) { return value; }

    static U SetBits(uint64_t value) { return value; }

    static U Bits(F value) { return std::bit_cast<U>(value); }

    static F FromBits(U bits) { return std::bit_cast<F>(bits); }

    template <int count>
    static U ShiftLeft(U bits)
    {
        return bits << count;
    }

    template <int count>
    static U ShiftRight(U bits)
    {
        return bits >> count;
    }

    static F Sqrt(F value) { return std::sqrt(value); }

    static M Less(F a, F b) { return a < b; }

    static M LessEqual(F a, F b) { return a <= b; }

    static M Equal(F a, F b) { return a == b; }

    static M IsZero(U bits) { return bits == 0; }

    static M And(M a, M b) { return a && b; }

    static M Or(M a, M b) { return a || b; }

    static M Not(M mask) { return !mask; }

    static bool All(M mask) { return mask; } // true when the mask is set in every lane

    static F Select(M mask, F yes, F no) { return mask ? yes : no; }

    // Replaces what stands in hi, lo and quadrant by ReduceHugeAngle(x) in the lanes of the mask.
    static void ReduceHuge(M mask, F x, F& hi, F& lo, U& quadrant)
    {
        if (!mask)
            return;
        const ReducedAngle angle = ReduceHugeAngle(x);
        hi = angle.hi;
        lo = angle.lo;
        quadrant = angle.quadrant;
    }
};

}
