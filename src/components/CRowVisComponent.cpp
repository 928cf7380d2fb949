#include "components/CRowVisComponent.h"

#include "engine2d/VisFonts.h"
#include "engine2d/VisPresets.h"
#include "foundation/OQNumberText.h"

namespace {

template <typename... Handlers>
struct Overloaded : Handlers...
{
    using Handlers::operator()...;
};

template <typename... Handlers>
Overloaded(Handlers...) -> Overloaded<Handlers...>;

CVisRowForm FormOfText(std::u16string_view name)
{
    if (name.ends_with(u"Equation"))
        return CVisRowForm::Equation;
    if (name.ends_with(u"Gradient"))
        return CVisRowForm::Gradient;
    return name == u"FontName" ? CVisRowForm::Font : CVisRowForm::Text;
}

}

void CRowVisComponent::Bind(
    const OQChar* name, int32_t& field, int32_t standard, const CVisPresetMap* map)
{
    m_bindings.push_back({ name, &field, standard, map,
        map == &NoYesPresets() ? CVisRowForm::Choice : CVisRowForm::Integer });
}

void CRowVisComponent::BindChoice(
    const OQChar* name, int32_t& field, int32_t standard, const CVisPresetMap& map)
{
    m_bindings.push_back({ name, &field, standard, &map, CVisRowForm::Choice });
}

void CRowVisComponent::Bind(
    const OQChar* name, float& field, float standard, const CVisPresetMap* map)
{
    m_bindings.push_back({ name, &field, standard, map, CVisRowForm::Float });
}

void CRowVisComponent::Bind(
    const OQChar* name, OQString& field, const OQChar* standard, const CVisPresetMap* map)
{
    Bind(name, field, standard, map, FormOfText(name));
}

void CRowVisComponent::Bind(const OQChar* name, OQString& field, const OQChar* standard,
    const CVisPresetMap* map, CVisRowForm form)
{
    m_bindings.push_back({ name, &field, standard, map, form });
}

void CRowVisComponent::Bind(const OQChar* name, VisFractionRect& field, const CVisPresetMap* map)
{
    m_bindings.push_back({ name, &field, VisFractionRect {}, map, CVisRowForm::Rectangle });
}

void CRowVisComponent::BindArea(
    const OQChar* name, VisFractionRect& field, const CVisPresetMap* map)
{
    m_bindings.push_back({ name, &field, VisFractionRect {}, map, CVisRowForm::Area });
}

void CRowVisComponent::Bind(const OQChar* name, VisFractionPoint& field)
{
    m_bindings.push_back({ name, &field, VisFractionPoint {}, nullptr, CVisRowForm::Point });
}

void CRowVisComponent::Bind(const OQChar* name, Color& field, uint32_t standard)
{
    m_bindings.push_back({ name, &field, Color { standard }, nullptr, CVisRowForm::Color });
}

void CRowVisComponent::Bind(const OQChar* name, CGradientEx& field, const CVisPresetMap& map)
{
    field.SetDefault();
    m_bindings.push_back({ name, &field, int32_t { 0 }, &map, CVisRowForm::Gradient });
}

int32_t CRowVisComponent::SaveProperties(CVisPropertyList& list)
{
    for (const Binding& binding : m_bindings)
        Save(binding, list);
    return 0;
}

int32_t CRowVisComponent::DescribeRows(CVisRowInfoList& rows) const
{
    for (const Binding& binding : m_bindings)
        rows.Add({ binding.name, binding.form, binding.map });
    return 0;
}

int32_t CRowVisComponent::LoadProperties(const CVisPropertyList* list)
{
    for (const Binding& binding : m_bindings)
        SetToStandard(binding);
    if (list) {
        for (const CVisPropertyRow& row : *list) {
            for (const Binding& binding : m_bindings) {
                if (row.Name == binding.name)
                    Load(binding, row.Value);
            }
        }
    }
    return CVisComponent::LoadProperties(list);
}

void CRowVisComponent::SetToStandard(const Binding& binding)
{
    // Bind pairs each field with a default of its own kind.
    std::visit(Overloaded {
                   [&](OQString* field) { *field = std::get<const OQChar*>(binding.standard); },
                   [](CGradientEx*) {},
                   [&]<typename T>(T* field) { *field = std::get<T>(binding.standard); },
               },
        binding.field);
}

void CRowVisComponent::Save(const Binding& binding, CVisPropertyList& list)
{
    const OQChar* name = binding.name;
    const CVisPresetMap* map = binding.map;
    const auto addText = [&](const OQString& text) {
        if (map)
            list.AddPresetRow(name, text, *map);
        else if (binding.form == CVisRowForm::Pages)
            list.AddRow(name, text, CVisPropertyRow::KindLongText, u"Edit");
        else if (binding.form == CVisRowForm::Font)
            list.AddRow(name, text, CVisPropertyRow::KindFont, VisFontPresets());
        else
            list.AddRow(name, text);
    };
    std::visit(Overloaded {
                   [&](const int32_t* field) {
                       map ? list.AddInt(name, *field, *map) : list.AddIntPlain(name, *field);
                   },
                   [&](const float* field) {
                       map ? list.AddFloat(name, *field, *map) : list.AddFloatPlain(name, *field);
                   },
                   [&](const OQString* field) { addText(*field); },
                   [&](const VisFractionRect* field) { addText(RectToText(*field)); },
                   [&](const VisFractionPoint* field) { addText(PointToText(*field)); },
                   [&](const CGradientEx* field) { addText(field->GetText()); },
                   [&](const Color* field) { addText(ColorToText(field->value)); },
               },
        binding.field);
}

void CRowVisComponent::Load(const Binding& binding, const OQString& rowValue)
{
    const OQString text = binding.map ? ResolvePreset(rowValue, *binding.map) : rowValue;
    std::visit(Overloaded {
                   [&](int32_t* field) { *field = OQTextToInt(text.GetText()); },
                   [&](float* field) { *field = TextToFloat(text); },
                   [&](OQString* field) { *field = text; },
                   [&](VisFractionRect* field) { TextToRect(text, *field); },
                   [&](VisFractionPoint* field) { TextToPoint(text, *field); },
                   [&](CGradientEx* field) { field->SetText(text); },
                   [&](Color* field) { field->value = TextToColor(text); },
               },
        binding.field);
}
