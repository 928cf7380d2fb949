// Made by tools/maths/Coefficients.sollya; change that, not this.
#pragma once

namespace pxvis::maths {

// pi/2 in parts of 31, 32 and 53 bits: products of the first two with a count below 2^21 are exact.
inline constexpr double halfPi1 = 0x1.921fb544p0;
inline constexpr double halfPi2 = 0x1.0b4611a6p-34;
inline constexpr double halfPi3 = 0x1.3198a2e037073p-69;

inline constexpr double twoOverPi = 0x1.45f306dc9c883p-1;

// Rounded to the nearest double, and what is left.
inline constexpr double piHi = 0x1.921fb54442d18p1;
inline constexpr double piLo = 0x1.1a62633145c07p-53;

// The same for pi/2.
inline constexpr double halfPiHi = 0x1.921fb54442d18p0;
inline constexpr double halfPiLo = 0x1.1a62633145c07p-54;

// The same for pi/4.
inline constexpr double quarterPiHi = 0x1.921fb54442d18p-1;
inline constexpr double quarterPiLo = 0x1.1a62633145c07p-55;

// 41 and 53 bits: a product of the first with an exponent is exact.
inline constexpr double ln2Hi = 0x1.62e42fefa3p-1;
inline constexpr double ln2Lo = 0x1.3de6af278ece6p-42;

inline constexpr double oneOverLn2 = 0x1.71547652b82fep0;

// 26 and 53 bits.
inline constexpr double twoFifteenthsHi = 0x1.111111p-3;
inline constexpr double twoFifteenthsLo = 0x1.1111111111111p-31;

// sin r = r + r z p(z), z = r^2, |r| <= pi/4. Relative error below 2^-62.
inline constexpr double sinTail[] = {
    -0x1.5555555555555p-3,
    0x1.111111111108bp-7,
    -0x1.a01a01a006d92p-13,
    0x1.71de3a401ac6dp-19,
    -0x1.ae643d465f38cp-26,
    0x1.6114a7f5e6fdp-33,
    -0x1.a55de0600e083p-41,
};

// cos r = 1 - z/2 + z^2 p(z), z = r^2, |r| <= pi/4. Relative error below 2^-63.
inline constexpr double cosTail[] = {
    0x1.555555555554bp-5,
    -0x1.6c16c16c15016p-10,
    0x1.a01a019c8f3eep-16,
    -0x1.27e4f7f19d4b2p-22,
    0x1.1ee9dbd0d86a7p-29,
    -0x1.8fa681e3853d1p-37,
};

// atan t = t + t z p(z), z = t^2, |t| <= sqrt 2 - 1. Relative error below 2^-63.
inline constexpr double atanTail[] = {
    -0x1.5555555555554p-2,
    0x1.99999999995bfp-3,
    -0x1.24924924721bap-3,
    0x1.c71c71b5f8e14p-4,
    -0x1.745d14918f17p-4,
    0x1.3b136b1bae533p-4,
    -0x1.110c4ad6ad5e7p-4,
    0x1.e16f444bbe824p-5,
    -0x1.ab6d98473ad4cp-5,
    0x1.70b245a1a93dcp-5,
    -0x1.11b975f43e95fp-5,
    0x1.f00e1b161c80dp-7,
};

// asin x = x + x z p(z), z = x^2, |x| <= 1/2. Relative error below 2^-59.
inline constexpr double asinTail[] = {
    0x1.5555555555577p-3,
    0x1.333333332e133p-4,
    0x1.6db6db721247bp-5,
    0x1.f1c71a95002fbp-6,
    0x1.6e8bdedebf9dfp-6,
    0x1.1c49f077d5bccp-6,
    0x1.ca1f8af1f08dp-7,
    0x1.75859dad072b4p-7,
    0x1.613c1e6ecc8cfp-7,
    0x1.e5fbe88ec2ffep-9,
    0x1.639a894ddfd76p-6,
    -0x1.57fad0de4e4f1p-6,
    0x1.0b45e9f71498ep-5,
};

// log((1 + s) / (1 - s)) = 2 s + s z p(z), z = s^2, |s| <= 3 - sqrt 8. Relative error below 2^-59.
inline constexpr double logTail[] = {
    0x1.5555555555592p-1,
    0x1.999999997ff65p-2,
    0x1.24924941db2d2p-2,
    0x1.c71c521a287bep-3,
    0x1.74663ba22a8c1p-3,
    0x1.39a20b8ccd57bp-3,
    0x1.2f025483348dcp-3,
};

// log((1 + s) / (1 - s)) = 2/15 s (15 + 5 z + 3 z^2 + z^3 p(z)), the same s. Relative error below
// 2^-72.
inline constexpr double powLogTail[] = {
    0x1.124924924954ep1,
    0x1.aaaaaaa9f4e12p0,
    0x1.5d174659a5335p0,
    0x1.276240c6c0c1bp0,
    0x1.000bedf0d71e1p0,
    0x1.c0b5363e6f797p-1,
    0x1.c95ca3816ca61p-1,
};

// exp r = 1 + r + r^2 p(r), |r| <= ln(2) / 2. Relative error below 2^-57.
inline constexpr double expTail[] = {
    0x1.000000000000ap-1,
    0x1.55555555554fep-3,
    0x1.55555555506bfp-5,
    0x1.1111111126b36p-7,
    0x1.6c16c18475faap-10,
    0x1.a01a012fed2e4p-13,
    0x1.a0199962993fep-16,
    0x1.71df18f7a7448p-19,
    0x1.28adf8e7aa0cbp-22,
    0x1.ad92d1d83a58bp-26,
};

// The same as sinTail, shorter. Relative error below 2^-47.
inline constexpr double sinShortTail[] = {
    -0x1.5555555552228p-3,
    0x1.1111110c85fc3p-7,
    -0x1.a019f937b9ef3p-13,
    0x1.71d76c2e6b997p-19,
    -0x1.a9614c443c89cp-26,
};

// The same as cosTail, shorter. Relative error below 2^-42.
inline constexpr double cosShortTail[] = {
    0x1.5555554ed7c62p-5,
    -0x1.6c16b828385e7p-10,
    0x1.a010dd97ae092p-16,
    -0x1.241e5bc968f29p-22,
};

// The same as asinTail, shorter. Relative error below 2^-43.
inline constexpr double asinShortTail[] = {
    0x1.555555565a9bdp-3,
    0x1.333331f267aadp-4,
    0x1.6db762b5093a8p-5,
    0x1.f1ab4338ff08ap-6,
    0x1.7027ec1c1b42ap-6,
    0x1.0e116222fadb4p-6,
    0x1.30da3de7136a1p-6,
    -0x1.6ff282f3482c4p-9,
    0x1.056f90a52e8b2p-5,
};

}
