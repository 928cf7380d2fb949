#pragma once

#include "engine2d/CVisPropertyList.h"

const CVisPresetMap& SpectrumDrawSourcePresets();
const CVisPresetMap& SpectrumChannelPresets();
const CVisPresetMap& SpectrumGravityPresets();
const CVisPresetMap& SpectrumTerminalVelocityPresets();
const CVisPresetMap& SpectrumThrowPresets();
const CVisPresetMap& SpectrumElementPresets();
const CVisPresetMap& SpectrumScalePresets();
const CVisPresetMap& SpectrumWeightPresets();
const CVisPresetMap& SpectrumRaisePresets();
const CVisPresetMap& SpectrumWidthPresets();
const CVisPresetMap& SpectrumSpacingPresets();
const CVisPresetMap& SpectrumPeakPresets();
