#include "components/CTransformVisComponent.h"

#include "components/TransformPresets.h"
#include "engine2d/CVisBufferHelper.h"
#include "engine2d/VisLimits.h"
#include "engine2d/VisPresets.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQNumberText.h"
#include "foundation/OQParallelRows.h"
#include "foundation/OQTruncate.h"
#include "kernels/Wrapped.h"

#include <algorithm>

namespace {

using pxvis::kernels::AddWrapped;
using pxvis::kernels::MultiplyWrapped;

// Pixels of zoom over a side, in 1/1024 pixel for each of its pixels, doubled.
int32_t ZoomStep(int32_t zoom, int32_t side)
{
    return MultiplyWrapped(zoom, 2048) / side;
}

void ClearOuterFrame(uint32_t* bits, int32_t width, int32_t height)
{
    std::fill_n(bits, width, 0u);
    std::fill_n(bits + int64_t { height - 1 } * width, width, 0u);
    for (int32_t row = 0; row < height; ++row) {
        bits[int64_t { row } * width] = 0;
        bits[int64_t { row } * width + width - 1] = 0;
    }
}

}

CTransformVisComponent::CTransformVisComponent()
{
    Bind(u"TransformEquation", m_transformEquation, u"d=d*0.95;", &TransformPresets());
    Bind(u"ScrollEquation", m_scrollEquation, u"x=0;y=0", &TransformScrollPresets());
    Bind(u"ZoomEquation", m_zoomEquation, u"x=0;y=0;", &TransformZoomPresets());
    Bind(u"ColorEquation", m_colorEquation, u"r=1;g=1;b=1;", &TransformColorPresets());
    Bind(u"DrawFrequency", m_drawFrequency, 2);
    Bind(u"FlipBuffer", m_flipBuffer, 1, &NoYesPresets());
    BindChoice(u"RadiusMode", m_radiusMode, 2, TransformRadiusPresets());
    Bind(u"ClipAtMaxRadius", m_clipAtMaxRadius, 1, &NoYesPresets());
    Bind(u"CenterPoint", m_centerPoint);
    BindArea(u"TransformRectangle", m_transformRectangle);
    LoadProperties(nullptr);
}

int32_t CTransformVisComponent::Randomize()
{
    LoadProperties(nullptr);
    m_transformEquation = RandomPresetValue(TransformPresets());
    m_radiusMode = OQTextToInt(RandomPresetValue(TransformRadiusPresets()).GetText());
    m_colorEquation = RandomPresetValue(TransformColorPresets());
    m_drawFrequency = 1;
    return 0;
}

int32_t CTransformVisComponent::Prepare(IVisBuffer&, IVisAudioData&)
{
    m_map.Clear();
    m_scroll.Compile(ResolvePreset(m_scrollEquation, TransformScrollPresets()));
    m_zoom.Compile(ResolvePreset(m_zoomEquation, TransformZoomPresets()));
    m_color.Compile(ResolvePreset(m_colorEquation, TransformColorPresets()));
    m_channels
        = { m_color.StartVariable(u"b"), m_color.StartVariable(u"g"), m_color.StartVariable(u"r") };
    m_pixelRectangle = PixelRect(m_transformRectangle, m_rect.Width(), m_rect.Height());
    m_prepared = true;
    return 0;
}

int64_t CTransformVisComponent::KeptPixels() const
{
    return CTransformMap::KeptPixels(m_rect.Width(), m_rect.Height());
}

int32_t CTransformVisComponent::Draw(IVisBuffer& buffer, IVisAudioData& audio)
{
    if (!m_prepared)
        Prepare(buffer, audio);
    m_frameCounter = AddWrapped(m_frameCounter, 1);
    if (m_frameCounter % std::max(1, m_drawFrequency) != 0)
        return 0;

    CVisBufferHelper picture(buffer);
    pxvis::kernels::TransformPass pass;
    pass.width = picture.Width();
    pass.height = picture.Height();
    pass.source = picture.Bits();
    pass.target = buffer.GetBits(-1);
    if (!pass.source || !pass.target)
        return -1;
    if (!OQTakeWork(VisLimits::transformPixelWork * pass.width * pass.height))
        return -1;
    if (!m_map.IsBuiltFor(pass.width, pass.height)) {
        const OQString equation = ResolvePreset(m_transformEquation, TransformPresets());
        if (!m_map.Build(pass.width, pass.height,
                { &equation, m_radiusMode, m_clipAtMaxRadius == 1, m_centerPoint }))
            return -1;
    }
    pass.map16 = m_map.Entries16();
    pass.map32 = m_map.Entries32();

    const int32_t smallerSide = std::min(pass.width, pass.height);
    RunColor(audio, pass);
    const Move scroll = m_scroll.Run(audio, smallerSide);
    const Move zoom = m_zoom.Run(audio, smallerSide);
    pass.scrollX = scroll.x;
    pass.scrollY = scroll.y;
    DrawRows(pass, zoom);

    if (m_flipBuffer == 1)
        picture.Flip();
    // Without a flip this is the picture that was read.
    ClearOuterFrame(picture.Bits(), pass.width, pass.height);
    return 0;
}

void CTransformVisComponent::RunColor(IVisAudioData& audio, pxvis::kernels::TransformPass& pass)
{
    m_color.Run(audio);
    for (size_t i = 0; i < m_channels.size(); ++i)
        pass.multiplier[i] = static_cast<uint16_t>(OQTruncateToInt32(*m_channels[i] * 204.0));
    pass.multiplier[3] = 127;
}

void CTransformVisComponent::MoveEquation::Compile(const OQString& text)
{
    equation.Compile(text);
    x = equation.StartVariable(u"x");
    y = equation.StartVariable(u"y");
}

CTransformVisComponent::Move CTransformVisComponent::MoveEquation::Run(
    IVisAudioData& audio, int32_t smallerSide)
{
    equation.Run(audio);
    const double side = smallerSide;
    return { OQTruncateToInt32(side * *x), OQTruncateToInt32(side * *y) };
}

// The zoom moves the source by one pixel whenever a phase passes 1024; random starts of the phases
// spread those steps over rows and frames.
void CTransformVisComponent::DrawRows(pxvis::kernels::TransformPass& pass, const Move& zoom)
{
    pass.left = std::max(1, m_pixelRectangle.left);
    pass.right = std::min(m_pixelRectangle.right, pass.width - 1);
    const int32_t top = std::max(1, m_pixelRectangle.top);
    const int32_t bottom = std::min(m_pixelRectangle.bottom, pass.height - 1);
    pass.zoomX = zoom.x;
    pass.zoomStepX = ZoomStep(zoom.x, pass.width);

    pass.ditherThreshold = OQRand() % 32;
    int32_t phaseY = OQRand() % 1024;
    const int32_t stepY = ZoomStep(zoom.y, pass.height);
    int32_t offsetY = zoom.y;

    // All random numbers are drawn before any row runs.
    m_rowStarts.clear();
    for (int32_t y = top; y < bottom; ++y) {
        phaseY = AddWrapped(phaseY, stepY);
        if (phaseY > 1024) {
            phaseY -= 1024;
            offsetY = AddWrapped(offsetY, -1);
        }
        m_rowStarts.push_back({ offsetY, OQRand() % 1024 });
    }
    if (pass.left >= pass.right)
        return;
    OQParallelRows(top, std::max(top, bottom), pass.width, [&](int32_t first, int32_t end) {
        for (int32_t y = first; y < end; ++y)
            pxvis::kernels::TransformRow(pass, y, m_rowStarts[static_cast<size_t>(y - top)]);
    });
}
