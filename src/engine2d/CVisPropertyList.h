#pragma once

#include "foundation/OQArray.h"
#include "foundation/OQMap.h"
#include "foundation/OQString.h"

#include <cstdint>

// From a friendly name to a value text; names are compared exactly.
using CVisPresetMap = OQMap<OQString, OQString>;

struct CVisPropertyRow
{
    enum : int32_t
    {
        KindPresets = 0,
        KindPlain = 1,
        KindLongText = 2,
        KindFont = 3,
    };

    OQString Name;
    OQString Value;
    OQString Presets; // choices, each followed by a "|"
    int32_t Kind = KindPlain;
};

// The table of text rows through which a piece is saved, loaded and edited; the only way into a
// component. Made for each save or load. Rows past VisLimits::rowsPerPiece are dropped.
class CVisPropertyList
{
public:
    explicit CVisPropertyList(bool friendlyNames = false)
        : friendly(friendlyNames)
    {
    }

    int32_t GetCount() const { return m_rows.GetCount(); }

    const CVisPropertyRow& operator[](int32_t index) const { return m_rows[index]; }

    const CVisPropertyRow* begin() const { return m_rows.GetData(); }

    const CVisPropertyRow* end() const { return m_rows.GetData() + m_rows.GetCount(); }

    void Clear() { m_rows.Clear(); }

    void AddRow(const OQChar* name, const OQString& value,
        int32_t kind = CVisPropertyRow::KindPlain, const OQString& presets = {});

    // Rows with choices: with `friendly` the value becomes the friendly name if one stands for it.
    void AddPresetRow(const OQChar* name, const OQString& value, const CVisPresetMap& map);
    void AddInt(const OQChar* name, int32_t value, const CVisPresetMap& map);
    void AddFloat(const OQChar* name, float value, const CVisPresetMap& map);

    void AddIntPlain(const OQChar* name, int32_t value, const OQString& presets = {});

    // Six decimals with the trailing zeros cut, the point kept: 1.0 is "1.".
    void AddFloatPlain(const OQChar* name, float value, const OQString& presets = {});

    bool friendly; // friendly names for an editor; false: real values for a file

private:
    OQArray<CVisPropertyRow> m_rows;
};

// The row's value, or what the map has for it if the value is a key there.
OQString ResolvePreset(const OQString& value, const CVisPresetMap& map);
