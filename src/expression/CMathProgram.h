#pragma once

#include "expression/CMathEvaluatorOpCode.h"
#include "expression/CMathStep.h"
#include "foundation/OQArray.h"

#include <cstdint>
#include <vector>

// An equation in the form that runs. The stack machine's program names each value where it stands:
// a number, a variable, or a temporary that takes the place of a stack slot, so that steps which
// only move values are gone, and what numbers alone determine is worked out beforehand.
class CMathProgram
{
public:
    CMathProgram() = default;
    CMathProgram(const CMathProgram&) = delete;
    CMathProgram& operator=(const CMathProgram&) = delete;

    // Takes the operations of a text that compiled. They neither need more than
    // CMathEvaluator::kStackSlots slots nor take from an empty stack, and EndAssignment finds an
    // address; nothing of this is checked.
    void Build(const OQArray<CMathEvaluatorOpCode>& opcodes, bool hasResult);

    void Clear();

    // Runs all steps; the value of the last statement, or 0.0 without hasResult.
    double Run() const;

    const std::vector<CMathStep>& Steps() const { return m_steps; }

    // Whether a value that a step names is a number, which never changes.
    bool IsNumber(const double* value) const;

    // Whether it is a temporary: written before it is read, and by no one else.
    bool IsTemporary(const double* value) const;

private:
    class Builder;

    std::vector<CMathStep> m_steps;
    std::vector<double> m_numbers;
    std::vector<double> m_temporaries;
    const double* m_result = nullptr;
};
