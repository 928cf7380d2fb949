#pragma once

#include "foundation/OQString.h"

#include <cstdint>

// Why an equation doesn't compile, for editors and checks; the engine itself passes over it in
// silence.
struct CMathEvaluatorError
{
    enum class Kind
    {
        None,
        EmptyText, // compiles to nothing; an equation left out is no mistake
        BlankStatement,
        AssignmentTarget, // what stands on the left of "=" is not one variable
        MissingValue, // an operator, a comma, a ")" or the end where a value is expected
        MissingOperator, // two values side by side
        MisplacedEqual,
        UnknownFunction,
        FunctionWithoutParenthesis,
        TooFewArguments,
        TooManyArguments, // only in an assignment
        UnclosedParenthesis,
        UnopenedParenthesis,
        MisplacedComma,
        StackOverflow,
    };

    Kind kind = Kind::None;
    int32_t position = 0; // in the text, in characters from 0; at most its length
    int32_t statement = 0; // from 1; 0 for an empty text and without an error
    OQString reason; // in English, without a full stop
};
