#pragma once

#include "expression/CMathEvaluatorOpCode.h"

#include <string_view>

// A function that equations can call.
struct CMathFunction
{
    std::u16string_view name; // lower case
    CMathOp opcode;
    int32_t argumentCount;
};

// Null if no function has exactly this name.
const CMathFunction* OQFindMathFunction(std::u16string_view name);

// The function behind an operation from CMathOp::Sin to CMathOp::Trunc.
const CMathFunction& OQMathFunction(CMathOp opcode);
