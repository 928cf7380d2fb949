#include "components/CBeatEquation.h"

#include "engine2d/VisAudio.h"
#include "foundation/OQEngineContext.h"

CBeatVariables::CBeatVariables()
    : m_beat(m_table.Variable(m_table.GetVariable(u"beat", true)))
    , m_impact(m_table.Variable(m_table.GetVariable(u"impact", true)))
{
}

void CBeatVariables::Hear(IVisAudioData& audio)
{
    m_beat = audio.GetValue(VisAudioValueBeat) != 0 ? 1.0 : 0.0;
    m_impact = VisImpact(audio);
}

void CBeatEquation::Compile(const OQString& text, const CBeatVariables& beat)
{
    m_evaluator.ClearVariables();
    m_evaluator.AddVariables(beat.Table());
    m_evaluator.SetEquation(text);
}

double* CBeatEquation::StartVariable(const OQChar* name, double start)
{
    double& value = m_evaluator.Variable(m_evaluator.GetVariable(name, true));
    value = start;
    return &value;
}

bool CBeatEquation::Run()
{
    if (!OQTakeWork(m_evaluator.GetWork()))
        return false;
    m_evaluator.Evaluate();
    return true;
}
