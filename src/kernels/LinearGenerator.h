#pragma once

#include <cstdint>

namespace pxvis::kernels {

// A linear congruential generator modulo 2^32, or several of its steps as one.
struct LinearGenerator
{
    uint32_t multiplier = 1;
    uint32_t summand = 0;

    constexpr uint32_t Next(uint32_t state) const { return state * multiplier + summand; }

    // `count` steps at once.
    constexpr LinearGenerator Steps(uint32_t count) const
    {
        LinearGenerator result;
        LinearGenerator power = *this;
        for (; count != 0; count >>= 1) {
            if (count & 1)
                result = { result.multiplier * power.multiplier, power.Next(result.summand) };
            power = { power.multiplier * power.multiplier, power.Next(power.summand) };
        }
        return result;
    }
};

// What "rand" means everywhere: the numbers are the states' bits 16 to 30.
inline constexpr LinearGenerator randomGenerator { 214013, 2531011 };

}
