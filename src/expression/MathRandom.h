#pragma once

#include "expression/CMathEvaluatorOpCode.h"

#include <cstdint>

// rand and randn of the equations. Each number takes two of the generator's, unless its limit is
// less than the smallest step.
namespace MathRandom {

constexpr double steps = 8192.0; // random numbers are whole multiples of 1/8192

// 0 to limit, or the limit itself.
double Rand(double limit);

// -limit to limit, or the limit itself.
double RandN(double limit);

// How many different numbers there are, with the limit's sign; 0: only the limit itself.
int32_t StepsOf(CMathOp operation, double limit);

// Whether the operation is one of the two and takes numbers from the generator.
bool DrawsNumber(CMathOp operation, double limit);

}
