#include "components/CFeedbackVisComponent.h"

#include "components/SuperTransformPresets.h"
#include "engine2d/IVisBuffer.h"
#include "engine2d/VisLimits.h"
#include "engine2d/VisPresets.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQTruncate.h"
#include "kernels/FeedbackPixel.h"

void CFeedbackVisComponent::BindColors()
{
    Bind(u"ColorFadeEquation", m_colorFadeEquation, u"r=1;g=1;b=1;", &SuperTransformFadePresets());
    Bind(u"ColorAddEquation", m_colorAddEquation, u"", &SuperTransformAddPresets());
}

void CFeedbackVisComponent::BindBorders()
{
    Bind(u"ClipAtBorders", m_clipAtBorders, 0, &NoYesPresets());
}

void CFeedbackVisComponent::PrepareColors()
{
    m_fade.Compile(m_colorFadeEquation, m_beat, 1.0);
    m_add.Compile(m_colorAddEquation, m_beat, 0.0);
}

bool CFeedbackVisComponent::TakePrepareWork(int64_t characters) const
{
    characters += int64_t { m_colorFadeEquation.GetLength() } + m_colorAddEquation.GetLength();
    return OQTakeWork(VisLimits::compileCharacterWork * characters);
}

bool CFeedbackVisComponent::TakePassWork(int64_t pixelWork) const
{
    const int64_t width = m_rect.Width();
    const int64_t height = m_rect.Height();
    return width > 0 && height > 0 && OQTakeWork(pixelWork * width * height);
}

bool CFeedbackVisComponent::TakePictures(
    IVisBuffer& buffer, pxvis::kernels::FeedbackPass& pass) const
{
    buffer.Flip();
    OQSize size;
    buffer.GetSize(&size);
    pass.width = size.cx;
    pass.height = size.cy;
    pass.target = buffer.GetBits(0);
    if (pass.width != m_rect.Width() || pass.height != m_rect.Height())
        return false;
    buffer.Flip();
    pass.source = buffer.GetBits(0);
    buffer.Flip();
    return pass.source && pass.target;
}

void CFeedbackVisComponent::RunColors(pxvis::kernels::FeedbackPass& pass)
{
    pass.clips = m_clipAtBorders != 0;
    m_fade.equation.Run();
    for (int i = 0; i < 3; ++i)
        pass.multiplier[i] = static_cast<uint16_t>(OQTruncateToInt32(*m_fade.channels[i] * 204.0));
    m_add.equation.Run();
    for (int i = 0; i < 3; ++i)
        pass.summand[i] = static_cast<int16_t>(OQTruncateToInt32(*m_add.channels[i] * 256.0));
    pass.ditherThreshold = OQRand() % 32;
}

void CFeedbackVisComponent::ChannelEquation::Compile(
    const OQString& text, const CBeatVariables& beat, double start)
{
    equation.Compile(text, beat);
    channels[0] = equation.StartVariable(u"b", start);
    channels[1] = equation.StartVariable(u"g", start);
    channels[2] = equation.StartVariable(u"r", start);
}
