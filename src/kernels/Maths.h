#pragma once

// The mathematical functions of the equation language and of the engine, for one double each.
//
// The C library's own functions give other last bits on other processors; these give the same bits
// everywhere, at any instruction set and vector width. The error is below 1 ulp for every argument
// (0.78 is the largest seen), huge arguments and denormal results included; a result that a double
// can hold exactly is exact. Special values are those of C99 Annex F, except that every NaN result
// is the same quiet NaN and that the floating-point flags and errno mean nothing.
// The processor has to round to nearest.

namespace pxvis::maths {

double Sin(double x);
double Cos(double x);
double Tan(double x);
double Atan(double x); // -pi/2 to pi/2
double Acos(double x); // 0 to pi; NaN outside -1 to 1
double Log(double x); // natural; -infinity at 0, NaN below
double Exp(double x);
double Pow(double x, double y); // NaN for a negative x and a y that is not whole

}
