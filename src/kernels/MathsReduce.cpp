#include "kernels/MathsReduce.h"

#include <bit>

namespace pxvis::maths {

__extension__ using Wide = unsigned __int128;

// 64 zero bits, then the first 1216 binary places of 2/pi.
static constexpr uint64_t twoOverPiBits[] = {
    0x0000000000000000,
    0xa2f9836e4e441529,
    0xfc2757d1f534ddc0,
    0xdb6295993c439041,
    0xfe5163abdebbc561,
    0xb7246e3a424dd2e0,
    0x06492eea09d1921c,
    0xfe1deb1cb129a73e,
    0xe88235f52ebb4484,
    0xe99c7026b45f7e41,
    0x3991d639835339f4,
    0x9c845f8bbdf9283b,
    0x1ff897ffde05980f,
    0xef2f118b5a0a6d1f,
    0x6d367ecf27cb09b7,
    0x4f463f669e5fea2d,
    0x7527bac7ebe5f17b,
    0x3d0739f78a5292ea,
    0x6bfb5fb11f8d5d08,
    0x56033046fc7b6bab,
};

// pi/2 in units of 2^-127.
static constexpr uint64_t halfPiHigh = 0xc90fdaa22168c234;
static constexpr uint64_t halfPiLow = 0xc4c6628b80dc1cd1;

static uint64_t High(Wide value)
{
    return static_cast<uint64_t>(value >> 64);
}

static uint64_t Low(Wide value)
{
    return static_cast<uint64_t>(value);
}

static double PowerOfTwo(int exponent)
{
    return std::bit_cast<double>(static_cast<uint64_t>(exponent + 1023) << 52);
}

ReducedAngle ReduceHugeAngle(double x)
{
    // x = mantissa * 2^exponent, exponent from -53 to 971 (972 for infinity).
    const uint64_t bits = std::bit_cast<uint64_t>(x);
    const int exponent = static_cast<int>(bits >> 52 & 0x7ff) - 1075;
    const uint64_t mantissa = (bits & 0xfffffffffffff) | 0x10000000000000;

    // The places of 2/pi above this window give multiples of 4 quadrants; those below its 192 bits
    // come to less than 2^-137, while no double is nearer than 2^-62 to a multiple of pi/2.
    const int offset = exponent + 62;
    const uint64_t* words = twoOverPiBits + offset / 64;
    const int shift = offset % 64;
    uint64_t window[3];
    for (int i = 0; i < 3; i++)
        window[i] = shift == 0 ? words[i] : words[i] << shift | words[i + 1] >> (64 - shift);

    // The product modulo 2^192, in units of 2^-190 quadrants.
    const Wide product2 = Wide { mantissa } * window[2];
    const Wide product1 = Wide { mantissa } * window[1] + High(product2);
    const uint64_t product0 = mantissa * window[0] + High(product1);
    uint64_t quadrant = product0 >> 62;
    uint64_t fraction0 = product0 << 2 | Low(product1) >> 62;
    uint64_t fraction1 = Low(product1) << 2 | Low(product2) >> 62;
    uint64_t fraction2 = Low(product2) << 2;

    // To the nearest quadrant: a fraction of a half and more becomes 1 - fraction, negative.
    const bool negative = fraction0 >> 63 != 0;
    if (negative) {
        quadrant++;
        fraction2 = ~fraction2 + 1;
        fraction1 = ~fraction1 + (fraction2 == 0);
        fraction0 = ~fraction0 + (fraction2 == 0 && fraction1 == 0);
    }

    int leading = 0;
    if (fraction0 == 0) {
        leading = 64;
        fraction0 = fraction1;
        fraction1 = fraction2;
        fraction2 = 0;
    }
    if (const int zeros = std::countl_zero(fraction0); zeros > 0 && zeros < 64) {
        leading += zeros;
        fraction0 = fraction0 << zeros | fraction1 >> (64 - zeros);
        fraction1 = fraction1 << zeros | fraction2 >> (64 - zeros);
    }

    // angle * 2^-127 * 2^-leading radians.
    const Wide angle = Wide { fraction0 } * halfPiHigh + High(Wide { fraction0 } * halfPiLow)
        + High(Wide { fraction1 } * halfPiHigh);
    const double top = static_cast<double>(static_cast<int64_t>(angle >> 75));
    const double next = static_cast<double>(static_cast<int64_t>(angle >> 22 & 0x1fffffffffffff));
    const double high = top * PowerOfTwo(-52 - leading);
    const double low = next * PowerOfTwo(-105 - leading);
    const double hi = high + low;
    const double lo = (high - hi) + low;
    return { negative ? -hi : hi, negative ? -lo : lo, quadrant };
}

}
