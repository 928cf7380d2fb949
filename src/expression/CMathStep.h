#pragma once

#include "expression/CMathEvaluatorOpCode.h"

// A step of a program that is ready to run: *result = operation(*a, *b, *c). Operands that the
// operation doesn't take are null. Plus is a copy; the operations that only move values to and from
// the stack don't occur.
struct CMathStep
{
    CMathOp operation {};
    double* result = nullptr;
    const double* a = nullptr;
    const double* b = nullptr;
    const double* c = nullptr;
};
