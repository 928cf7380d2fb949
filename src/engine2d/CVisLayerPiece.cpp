#include "engine2d/CVisLayerPiece.h"

#include "engine2d/CVisComponent.h"
#include "engine2d/CVisLayer.h"
#include "engine2d/VisAudio.h"
#include "engine2d/VisLimits.h"
#include "engine2d/VisPresets.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQNumberText.h"

#include <algorithm>

namespace {

// A row's colour is 0xRRGGBB, the stored one has red lowest; saving undoes what loading does.
uint32_t ExchangeRedAndBlue(uint32_t value)
{
    return (value & 0xFF00FF00u) | ((value & 0xFFu) << 16) | ((value >> 16) & 0xFFu);
}

}

CVisLayerPiece::CVisLayerPiece(CVisLayerPiece* parent)
    : m_parent(parent)
{
    CompileOnEquation();
}

CVisLayerPiece::~CVisLayerPiece()
{
    Root().m_scriptPixels -= m_keptPixels;
}

CVisLayerPiece& CVisLayerPiece::Root()
{
    CVisLayerPiece* piece = this;
    while (piece->m_parent)
        piece = piece->m_parent;
    return *piece;
}

bool CVisLayerPiece::KeepPixels(int64_t pixels)
{
    CVisLayerPiece& root = Root();
    const OQRect picture = root.m_layer ? root.m_layer->GetPixelRect() : OQRect {};
    const int64_t limit = std::max(
        VisLimits::keptPixels, VisLimits::keptPictures * picture.Width() * picture.Height());
    root.m_scriptPixels -= m_keptPixels;
    const bool fits = pixels <= limit - root.m_scriptPixels;
    m_keptPixels = fits ? pixels : 0;
    root.m_scriptPixels += m_keptPixels;
    return fits;
}

void CVisLayerPiece::MakeLayer()
{
    m_type = Type::Layer;
    m_layer = std::make_unique<CVisLayer>(*this);
}

void CVisLayerPiece::MakeComponent(std::unique_ptr<CVisComponent> component)
{
    m_type = Type::Component;
    m_component = std::move(component);
}

int32_t CVisLayerPiece::SaveProperties(CVisPropertyList& list) const
{
    if (m_type == Type::Empty)
        return -1;
    list.AddPresetRow(u"OnEquation", m_onEquationText, OnEquationPresets());
    if (m_type == Type::Component)
        return m_component->SaveProperties(list);
    list.AddInt(u"ClearEachFrame", m_clearEachFrame ? 1 : 0, NoYesPresets());
    list.AddInt(u"OutputMode", m_outputMode, OutputModePresets());
    list.AddPresetRow(u"Rectangle", RectToText(m_rectangle), RectanglePresets());
    list.AddRow(u"TransparentColor", ColorToText(ExchangeRedAndBlue(m_transparentColor)));
    return 0;
}

int32_t CVisLayerPiece::DescribeRows(CVisRowInfoList& rows) const
{
    if (m_type == Type::Empty)
        return -1;
    rows.Add({ u"OnEquation", CVisRowForm::Equation, &OnEquationPresets() });
    if (m_type == Type::Component)
        return m_component->DescribeRows(rows);
    rows.Add({ u"ClearEachFrame", CVisRowForm::Choice, &NoYesPresets() });
    rows.Add({ u"OutputMode", CVisRowForm::Choice, &OutputModePresets() });
    rows.Add({ u"Rectangle", CVisRowForm::Rectangle, &RectanglePresets() });
    rows.Add({ u"TransparentColor", CVisRowForm::Color, nullptr });
    return 0;
}

void CVisLayerPiece::LoadLayerRow(const CVisPropertyRow& row)
{
    if (row.Name == u"OutputMode")
        m_outputMode = OQTextToInt(ResolvePreset(row.Value, OutputModePresets()).GetText());
    else if (row.Name == u"ClearEachFrame")
        m_clearEachFrame = OQTextToInt(ResolvePreset(row.Value, NoYesPresets()).GetText()) != 0;
    else if (row.Name == u"Rectangle")
        TextToRect(ResolvePreset(row.Value, RectanglePresets()), m_rectangle);
    else if (row.Name == u"TransparentColor")
        m_transparentColor = ExchangeRedAndBlue(TextToColor(row.Value));
}

int32_t CVisLayerPiece::LoadProperties(const CVisPropertyList* list)
{
    if (m_type == Type::Layer) {
        m_outputMode = 0;
        m_clearEachFrame = false;
        m_rectangle = {};
        m_transparentColor = 0xFFFFFFFF;
        m_onEquationText = u"on=1";
    }
    if (list) {
        for (const CVisPropertyRow& row : *list) {
            if (row.Name == u"OnEquation" && m_type != Type::Empty)
                m_onEquationText = ResolvePreset(row.Value, OnEquationPresets());
            else if (m_type == Type::Layer)
                LoadLayerRow(row);
        }
    }
    int32_t result = -1;
    if (m_type == Type::Component) {
        result = m_component->LoadProperties(list);
        m_fits = KeepPixels(m_component->KeptPixels());
    } else if (m_type == Type::Layer) {
        m_layer->ForgetSize();
        result = 0;
    }
    CompileOnEquation();
    return result;
}

int32_t CVisLayerPiece::Resize(const OQRect& rect)
{
    switch (m_type) {
    case Type::Component: {
        const int32_t result = m_component->SetRect(rect);
        m_fits = KeepPixels(m_component->KeptPixels());
        return result;
    }
    case Type::Layer:
        return m_layer->Resize(rect);
    default:
        return -1;
    }
}

// Variables keep their values when the equation changes.
void CVisLayerPiece::CompileOnEquation()
{
    m_onEquation.SetEquation(m_onEquationText);
    m_beat = &m_onEquation.Variable(m_onEquation.GetVariable(u"beat", true));
    m_impact = &m_onEquation.Variable(m_onEquation.GetVariable(u"impact", true));
    m_on = &m_onEquation.Variable(m_onEquation.GetVariable(u"on", true));
}

bool CVisLayerPiece::IsOn(IVisAudioData& audio)
{
    if (!OQTakeWork(m_onEquation.GetWork()))
        return false;
    // Here, unlike in components, the beat goes through single precision.
    *m_beat = double { static_cast<float>(audio.GetValue(VisAudioValueBeat)) };
    *m_impact = VisImpact(audio);
    m_onEquation.Evaluate();
    return *m_on > 0.0;
}

int32_t CVisLayerPiece::Draw(IVisBuffer& buffer, IVisAudioData& audio, const OQRect& rect)
{
    if (!m_fits || !IsOn(audio))
        return -1;
    switch (m_type) {
    case Type::Component:
        return m_component->Draw(buffer, audio);
    case Type::Layer:
        return DrawLayer(buffer, audio, rect);
    default:
        return -1;
    }
}

int32_t CVisLayerPiece::DrawLayer(IVisBuffer& buffer, IVisAudioData& audio, const OQRect& rect)
{
    OQSize size;
    m_layer->GetBuffer().GetSize(&size);
    if (!OQTakeWork(VisLimits::mergePixelWork * size.cx * size.cy))
        return -1;
    if (m_clearEachFrame) {
        if (IOQImage* image = m_layer->GetBuffer().GetImage(0))
            image->Clear(0, 255);
    }
    const int32_t result = m_layer->Draw(audio, rect);
    m_layer->MergeInto(buffer, m_outputMode, m_transparentColor);
    return result;
}
