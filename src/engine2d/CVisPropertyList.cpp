#include "engine2d/CVisPropertyList.h"

#include "engine2d/VisLimits.h"
#include "foundation/OQNumberText.h"

void CVisPropertyList::AddRow(
    const OQChar* name, const OQString& value, int32_t kind, const OQString& presets)
{
    if (m_rows.GetCount() >= VisLimits::rowsPerPiece)
        return;
    m_rows.Add({ name, value, presets, kind });
}

void CVisPropertyList::AddPresetRow(
    const OQChar* name, const OQString& value, const CVisPresetMap& map)
{
    OQString rowValue = value;
    OQString presets;
    for (const auto& preset : map) {
        presets += friendly ? preset.key : preset.value;
        presets += u'|';
        if (friendly && preset.value == rowValue)
            rowValue = preset.key;
    }
    AddRow(name, rowValue, CVisPropertyRow::KindPresets, presets);
}

void CVisPropertyList::AddInt(const OQChar* name, int32_t value, const CVisPresetMap& map)
{
    AddPresetRow(name, OQIntToText(value), map);
}

void CVisPropertyList::AddFloat(const OQChar* name, float value, const CVisPresetMap& map)
{
    AddPresetRow(name, OQFloatToText(value), map);
}

void CVisPropertyList::AddIntPlain(const OQChar* name, int32_t value, const OQString& presets)
{
    AddRow(name, OQIntToText(value), CVisPropertyRow::KindPlain, presets);
}

void CVisPropertyList::AddFloatPlain(const OQChar* name, float value, const OQString& presets)
{
    OQString text = OQFixedToText(double { value }, 6);
    int32_t length = text.GetLength();
    while (length > 0 && text[length - 1] == u'0')
        --length;
    AddRow(name, text.Left(length), CVisPropertyRow::KindPlain, presets);
}

OQString ResolvePreset(const OQString& value, const CVisPresetMap& map)
{
    OQString resolved;
    return map.Lookup(value, resolved) ? resolved : value;
}
