#pragma once

#include "engine2d/CVisPropertyList.h"

#include <span>

struct VisPreset
{
    const OQChar* name;
    const OQChar* value;
};

// The tables that several kinds of rows share; each is built once and never changed.
const CVisPresetMap& NoYesPresets();
const CVisPresetMap& RectanglePresets();
const CVisPresetMap& OutputModePresets();
const CVisPresetMap& OnEquationPresets();

// Values are gradient texts. "Take Red" stands only in some components' map.
const CVisPresetMap& GradientPresets();
const CVisPresetMap& GradientPresetsWithTakeRed();

// The map of a table, in the table's order.
CVisPresetMap MakePresetMap(std::span<const VisPreset> presets);

// A random value of the map, in the map's order. The map isn't empty.
OQString RandomPresetValue(const CVisPresetMap& map);
