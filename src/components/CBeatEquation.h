#pragma once

#include "expression/CMathEvaluator.h"

class IVisAudioData;

// One `beat` and one `impact` that several equation objects share; one of them that writes to it
// changes what the next ones read. Outlives them.
class CBeatVariables
{
public:
    CBeatVariables();

    // Once a Draw, before the equations run: 1.0 or 0.0 each.
    void Hear(IVisAudioData& audio);

    const CVariableTable& Table() const { return m_table; }

private:
    CVariableTable m_table;
    double& m_beat;
    double& m_impact;
};

// A component's equation that shares the beat's variables. Other than in CVisEquation each Compile
// starts with fresh variables.
class CBeatEquation
{
public:
    // A text that doesn't compile, or an empty one, leaves an equation that does nothing.
    void Compile(const OQString& text, const CBeatVariables& beat);

    // The variable's value, set to `start`; the address holds until the next Compile.
    double* StartVariable(const OQChar* name, double start);

    // Evaluates, if the Draw may cost that.
    bool Run();

    CMathEvaluator& Evaluator() { return m_evaluator; }

private:
    CMathEvaluator m_evaluator;
};
