#pragma once

#include "expression/CMathEvaluator.h"
#include "foundation/OQEngineContext.h"

#include <bit>
#include <doctest/doctest.h>
#include <string>

inline bool Compiles(const OQString& text)
{
    CMathEvaluator evaluator;
    evaluator.SetEquation(text);
    return evaluator.IsCompiled();
}

// The value of a plain expression, or of the variable x after an assignment.
inline double ValueOf(const OQString& text)
{
    INFO(text.ToUtf8());
    CMathEvaluator evaluator;
    evaluator.SetEquation(text);
    REQUIRE(evaluator.IsCompiled());
    const double result = evaluator.Evaluate();
    return evaluator.HasResult() ? result : evaluator.Variable(evaluator.GetVariable(u"x", false));
}

// Holds equations in one variable x to the value told, by bits, so that -0 and NaN count.
struct ExpectedValue
{
    const OQChar* text;
    double value;
};

inline void CheckValues(std::initializer_list<ExpectedValue> expectations)
{
    for (const auto& [text, value] : expectations) {
        const double actual = ValueOf(text);
        INFO(OQString(text).ToUtf8(), " gives ", actual, ", not ", value);
        CHECK(std::bit_cast<uint64_t>(actual) == std::bit_cast<uint64_t>(value));
    }
}
