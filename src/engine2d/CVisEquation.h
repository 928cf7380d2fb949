#pragma once

#include "expression/CMathEvaluator.h"

class IVisAudioData;

// A component's equation that hears the beat. Variables of the script's own keep their values when
// the equation is compiled again; those that the component uses start at 0.
class CVisEquation
{
public:
    // A text that doesn't compile, or an empty one, leaves an equation that does nothing.
    void Compile(const OQString& text);

    // The variable's value, set to 0.0; the address holds as long as the equation lives.
    double* StartVariable(const OQChar* name);

    // Binds `beat` and `impact` and evaluates, if the Draw may cost that.
    void Run(IVisAudioData& audio);

private:
    CMathEvaluator m_evaluator;
    double* m_beat = nullptr;
    double* m_impact = nullptr;
};
