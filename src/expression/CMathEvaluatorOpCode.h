#pragma once

#include <cstdint>

// The operations of a compiled equation. "b" is the top of the stack, "a" the value below it; an
// operation on both leaves its result in the place of a.
enum class CMathOp : uint32_t
{
    Number = 100, // pushes the literal
    Variable = 101, // pushes the variable's value
    VariableAddress = 102, // pushes the address that EndAssignment stores to

    Add = 201,
    Subtract = 202,
    Multiply = 203,
    Divide = 204,
    Negate = 205,
    Modulo = 206,
    Power = 207,
    Less = 208, // b - a: above 0 where a is less
    Greater = 209, // a - b
    Smaller = 210, // the operand nearer to 0, a on a tie
    Larger = 211, // the operand farther from 0, a on a tie
    Plus = 212,

    // The functions, in the order of the table in CMathFunction.cpp.
    Sin = 300,
    Cos = 301,
    Tan = 302,
    Abs = 303,
    Atan = 304,
    Log = 305,
    Log10 = 306,
    AbsSin = 307,
    AbsCos = 308,
    Rand = 309,
    RandN = 310,
    If = 311,
    Sign = 312,
    Min = 313,
    Max = 314,
    Equal = 315,
    Below = 316,
    Above = 317,
    Pow = 318,
    Int = 319,
    Frac = 320,
    Round = 321,
    Trunc = 322,

    EndAssignment = 400,
    EndStatement = 401, // empties the stack for the next statement

    And = 500,
    Or = 501,
    Not = 502,
};

// One step of a compiled equation. Fields that its operation doesn't use are 0.
struct CMathEvaluatorOpCode
{
    CMathOp opcode {};
    double literal = 0.0;
    double* variable = nullptr; // inside a variable record, which never moves
};
