#include "engine2d/CVisEquation.h"

#include "engine2d/VisAudio.h"
#include "foundation/OQEngineContext.h"

void CVisEquation::Compile(const OQString& text)
{
    m_evaluator.SetEquation(text);
    m_beat = StartVariable(u"beat");
    m_impact = StartVariable(u"impact");
}

double* CVisEquation::StartVariable(const OQChar* name)
{
    double& value = m_evaluator.Variable(m_evaluator.GetVariable(name, true));
    value = 0.0;
    return &value;
}

void CVisEquation::Run(IVisAudioData& audio)
{
    *m_beat = static_cast<double>(audio.GetValue(VisAudioValueBeat));
    *m_impact = VisImpact(audio);
    if (OQTakeWork(m_evaluator.GetWork()))
        m_evaluator.Evaluate();
}
