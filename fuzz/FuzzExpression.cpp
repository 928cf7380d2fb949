#include "FuzzTesting.h"
#include "expression/CMathEvaluator.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQStringArray.h"
#include "foundation/OQTextEncoding.h"

#include <bit>
#include <vector>

namespace {

std::vector<uint64_t> Values(CMathEvaluator& equation)
{
    std::vector<uint64_t> values;
    for (int32_t i = 0; i < equation.GetVariableCount(); ++i)
        values.push_back(std::bit_cast<uint64_t>(equation.Variable(i)));
    return values;
}

// Two runs from the same random state and variables `start`; what they give must be the same.
void RunTwice(CMathEvaluator& equation, const std::vector<uint64_t>& start)
{
    std::vector<uint64_t> values[2];
    uint64_t results[2] = {};
    for (size_t run = 0; run < 2; ++run) {
        OQEngineContext context { .virtualClock = true, .virtualNanoseconds = 1'000'000'000'000 };
        const OQEngineContextScope scope(&context);
        for (size_t i = 0; i < start.size(); ++i)
            equation.Variable(static_cast<int32_t>(i)) = std::bit_cast<double>(start[i]);
        // The second evaluation starts from what the first one left.
        equation.Evaluate();
        results[run] = std::bit_cast<uint64_t>(equation.Evaluate());
        values[run] = Values(equation);
    }
    FUZZ_CHECK(results[0] == results[1]);
    FUZZ_CHECK(values[0] == values[1]);
    if (!equation.IsCompiled())
        FUZZ_CHECK(values[0] == start);
    if (!equation.HasResult())
        FUZZ_CHECK(results[0] == 0);
}

}

// Lines are equations; all but the first share its variables, as a component's do.
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    OQStringArray lines;
    OQBytesToText({ reinterpret_cast<const char*>(data), size }).Split(u'\n', lines);
    CVariableTable table;
    for (int32_t i = 0; i < lines.GetCount() && i < 16; ++i) {
        CMathEvaluator equation;
        if (i % 2 == 0)
            equation.UseVariables(table);
        else
            equation.AddVariables(table);
        CMathEvaluatorError error;
        equation.SetEquation(lines[i], &error);
        FUZZ_CHECK(equation.IsCompiled() == (error.kind == CMathEvaluatorError::Kind::None));
        FUZZ_CHECK(error.position >= 0 && error.position <= lines[i].GetLength());
        FUZZ_CHECK(equation.IsCompiled() == error.reason.IsEmpty());
        FUZZ_CHECK(equation.IsCompiled() == (equation.GetWork() > 0));
        RunTwice(equation, Values(equation));

        // Without the report the same program comes out, with all variables there already.
        const std::vector<uint64_t> before = Values(equation);
        const int64_t work = equation.GetWork();
        const bool compiled = equation.IsCompiled();
        equation.SetEquation(lines[i]);
        FUZZ_CHECK(equation.IsCompiled() == compiled && equation.GetWork() == work);
        FUZZ_CHECK(Values(equation) == before);
    }
    return 0;
}
