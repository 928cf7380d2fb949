#include "components/CSuperTransformVisComponent.h"

#include "components/SuperTransformPresets.h"
#include "engine2d/IVisBuffer.h"
#include "engine2d/VisLimits.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQParallelRows.h"
#include "foundation/OQTruncate.h"
#include "kernels/Maths.h"
#include "kernels/SuperTransformRow.h"
#include "kernels/Wrapped.h"

namespace {

// Of the zoom as the factor of the map, in 1/1024. Single precision: a zoom that fades away ends at
// 1024, where doubles would stay at 1023.
int32_t ZoomFactor(double zoom)
{
    return OQTruncateToInt32(1024.0f - static_cast<float>(zoom) * 1024.0f);
}

}

CSuperTransformVisComponent::CSuperTransformVisComponent()
{
    Bind(u"TransformEquation", m_transformEquation, kitchenSinkTransforms, &SuperTransformPresets(),
        CVisRowForm::EquationList);
    Bind(u"ZoomEquation", m_zoomEquation, u"", &SuperTransformZoomPresets());
    Bind(u"ScrollEquation", m_scrollEquation, u"", &SuperTransformScrollPresets());
    Bind(u"RotateEquation", m_rotateEquation, u"", &SuperTransformRotatePresets());
    BindColors();
    Bind(u"TransformChangeEquation", m_transformChangeEquation,
        u"c=if(t>200,1,0);t=if(t>200,0,t+1)");
    BindBorders();
    LoadProperties(nullptr);
}

int32_t CSuperTransformVisComponent::LoadProperties(const CVisPropertyList* list)
{
    const int32_t result = CFeedbackVisComponent::LoadProperties(list);
    m_transforms.Clear();
    if (!m_transformEquation.IsEmpty())
        m_transformEquation.Split(u'|', m_transforms);
    return result;
}

int64_t CSuperTransformVisComponent::KeptPixels() const
{
    return CSuperTransformMap::KeptPixels(m_rect.Width(), m_rect.Height());
}

int32_t CSuperTransformVisComponent::Prepare(IVisBuffer&, IVisAudioData&)
{
    m_map.Clear();
    PickNextTransform();
    m_zoom.Compile(m_zoomEquation, m_beat);
    m_scroll.Compile(m_scrollEquation, m_beat);
    m_rotate.Compile(m_rotateEquation, m_beat);
    m_angle = m_rotate.StartVariable(u"r", 0.0);
    PrepareColors();
    m_change.Compile(m_transformChangeEquation, m_beat);
    m_changeNow = m_change.StartVariable(u"c", 1.0);
    OQSeedRand(static_cast<uint32_t>(OQClockMilliseconds()));
    m_prepared = true;
    return 0;
}

int32_t CSuperTransformVisComponent::Draw(IVisBuffer& buffer, IVisAudioData& audio)
{
    if (!TakePassWork(VisLimits::superTransformPixelWork))
        return -1;
    if (!m_prepared) {
        int64_t characters = 0;
        for (const OQString* text :
            { &m_zoomEquation, &m_scrollEquation, &m_rotateEquation, &m_transformChangeEquation })
            characters += text->GetLength();
        if (!TakePrepareWork(characters))
            return -1;
        Prepare(buffer, audio);
    }
    m_beat.Hear(audio);
    // The change equation runs in the first frame, too.
    if (IsChangeDue() || !m_map.IsBuilt())
        BuildNextMap();
    if (!m_map.IsBuilt())
        return -1;

    pxvis::kernels::SuperTransformPass pass;
    if (!TakePictures(buffer, pass))
        return -1;
    pass.map16 = m_map.Entries16();
    pass.map32 = m_map.Entries32();
    RunMoves(pass);
    RunColors(pass);
    OQParallelRows(1, pass.height - 1, pass.width, [&pass](int32_t first, int32_t end) {
        for (int32_t y = first; y < end; ++y)
            pxvis::kernels::SuperTransformRow(pass, y);
    });
    pxvis::kernels::RepairFrame(pass.target, pass.width, pass.height);
    return 0;
}

bool CSuperTransformVisComponent::IsChangeDue()
{
    return m_transforms.GetCount() >= 2 && m_change.Run() && *m_changeNow >= 1.0;
}

// A map that the Draw may not cost is passed over: the old one, if there is one, stays, and the
// next pick may be cheaper.
void CSuperTransformVisComponent::BuildNextMap()
{
    const int32_t count = m_transforms.GetCount();
    const OQString text = count > 0 ? m_transforms[m_nextTransform % count] : OQString();
    if (OQTakeWork(VisLimits::compileCharacterWork * text.GetLength())) {
        m_transform.Compile(text, m_beat);
        m_transform.StartVariable(u"r", 0.0);
        m_transform.StartVariable(u"d", 0.0);
        m_map.Build(m_rect.Width(), m_rect.Height(), m_transform.Evaluator());
    }
    PickNextTransform();
}

void CSuperTransformVisComponent::PickNextTransform()
{
    const int32_t count = m_transforms.GetCount();
    m_nextTransform = count > 0 ? OQRand() % count : 0;
}

void CSuperTransformVisComponent::RunMoves(pxvis::kernels::SuperTransformPass& pass)
{
    m_scroll.equation.Run();
    m_zoom.equation.Run();
    m_rotate.Run();
    pass.scrollX = pxvis::kernels::MultiplyWrapped(32, OQTruncateToInt32(pass.width * *m_scroll.x));
    pass.scrollY
        = pxvis::kernels::MultiplyWrapped(32, OQTruncateToInt32(pass.height * *m_scroll.y));
    pass.factorX = ZoomFactor(*m_zoom.x);
    pass.factorY = ZoomFactor(*m_zoom.y);
    pass.sine = OQTruncateToInt32(pxvis::maths::Sin(*m_angle) * 1024.0);
    pass.cosine = OQTruncateToInt32(pxvis::maths::Cos(*m_angle) * 1024.0);
}

void CSuperTransformVisComponent::MoveEquation::Compile(
    const OQString& text, const CBeatVariables& beat)
{
    equation.Compile(text, beat);
    x = equation.StartVariable(u"x", 0.0);
    y = equation.StartVariable(u"y", 0.0);
}
