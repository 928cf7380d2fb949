#pragma once

#include "kernels/LinearGenerator.h"

#include <cstdint>

namespace pxvis::kernels {

// The operations of the equation language over columns, arrays of values of one lane each. A lane's
// result is, bit for bit, that of the operation on its values alone; a NaN's bits are open.
enum class ColumnOperation : uint8_t
{
    Copy, // a
    Add,
    Subtract,
    Multiply,
    Divide, // a where b is 0
    Negate,
    Modulo, // a - b * the whole part of a / b, which is cut to 32 bits; a where b is 0
    Power,
    Less, // b - a
    Smaller, // the one nearer to 0, a on a tie
    Larger, // the one farther from 0, a on a tie

    Sin,
    Cos,
    Tan,
    Abs,
    Atan,
    Log,
    Log10,
    AbsSin,
    AbsCos,
    If, // b where a is above 0, else c
    Sign, // -1 where a is below 0, else 1
    Min,
    Max,
    Equal, // 1 where they differ by less than 0.0001, else 0
    Below, // 1 where a is below b, else 0
    Above,
    Int, // the whole part, cut to 32 bits
    Frac,
    Round,
    Trunc, // a cut to b decimals, 0 to 8

    And, // of truth values: NaN and all but 0 are true
    Or,
    Not,

    Count,
};

// The columns have room for a multiple of columnPadding lanes: those behind `count` may be read and
// written, too. The result may be one of the arguments; those that an operation doesn't take may be
// null.
using ColumnFunction
    = void (*)(double* result, const double* a, const double* b, const double* c, int32_t count);

constexpr int32_t columnPadding = 16;

// By ColumnOperation, for the best instruction set of the processor. Null where the processor has
// no vectors, or where the scalar form of the kernels is chosen.
const ColumnFunction* ColumnFunctions();

// The random numbers that an operation takes when it runs for one lane after the other: two steps
// of randomGenerator a lane, which make a number of 30 bits, whose remainder by `limit`, not 0, is
// divided by 8192. `state` is the generator's before the first lane's two steps, `perLane` leads
// from a lane's to the next one's. Only where ColumnFunctions isn't null.
void RandomColumn(
    double* result, uint32_t state, const LinearGenerator& perLane, int32_t limit, int32_t count);

}
