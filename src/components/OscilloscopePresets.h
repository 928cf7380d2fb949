#pragma once

#include "engine2d/CVisPropertyList.h"

const CVisPresetMap& OscilloscopeLinePresets();
const CVisPresetMap& OscilloscopeFillPresets();
const CVisPresetMap& OscilloscopeDrawPresets();
const CVisPresetMap& OscilloscopeChannelPresets();
