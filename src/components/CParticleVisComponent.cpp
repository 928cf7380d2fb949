#include "components/CParticleVisComponent.h"

#include "components/ParticlePresets.h"
#include "engine2d/CVisBufferHelper.h"
#include "engine2d/VisLimits.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQNumberText.h"
#include "foundation/OQTruncate.h"

namespace {

// Past 1, and below 0, a share wraps round.
int32_t ByteFromShare(double share)
{
    return OQTruncateToInt32(share * 255.0) & 0xFF;
}

}

CParticleVisComponent::CParticleVisComponent()
{
    Bind(u"ParticleEquation", m_particleEquation,
        u"r=r+(cos(t)/50);d=abssin(t)/4;t=t+0.01;cs=(0.02)>(beat*0.15);s=(s-0.01)>cs",
        &ParticlePresets());
    Bind(u"ColorEquation", m_colorEquation, u"r=.05;g=.05;b=.05;", &ParticleColorPresets());
    Bind(u"BlendMode", m_blendModeText, u"1", &ParticleBlendPresets(), CVisRowForm::Choice);
    LoadProperties(nullptr);
}

int32_t CParticleVisComponent::Prepare(IVisBuffer&, IVisAudioData&)
{
    if (!OQTakeWork(VisLimits::compileCharacterWork
            * (int64_t { m_particleEquation.GetLength() } + m_colorEquation.GetLength())))
        return -1;
    m_particle.Compile(m_particleEquation);
    m_direction = m_particle.StartVariable(u"r");
    m_distance = m_particle.StartVariable(u"d");
    m_size = m_particle.StartVariable(u"s");
    m_color.Compile(m_colorEquation);
    m_red = m_color.StartVariable(u"r");
    m_green = m_color.StartVariable(u"g");
    m_blue = m_color.StartVariable(u"b");
    m_blendMode = OQTextToInt(m_blendModeText.GetText());
    m_prepared = true;
    return 0;
}

int32_t CParticleVisComponent::Draw(IVisBuffer& buffer, IVisAudioData& audio)
{
    if (!m_prepared && Prepare(buffer, audio) != 0)
        return -1;
    m_particle.Run(audio);
    m_color.Run(audio);
    // Red meets the pixel's lowest byte, which is blue. Kept: scripts choose their colours by it.
    const int32_t color
        = ByteFromShare(*m_blue) << 16 | ByteFromShare(*m_green) << 8 | ByteFromShare(*m_red);
    CVisBufferHelper(buffer).DrawDisc(static_cast<float>(*m_distance),
        static_cast<float>(*m_direction), static_cast<float>(*m_size), color, m_blendMode);
    return 0;
}
