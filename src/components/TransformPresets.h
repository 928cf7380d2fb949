#pragma once

#include "engine2d/CVisPropertyList.h"

const CVisPresetMap& TransformPresets();
const CVisPresetMap& TransformScrollPresets();
const CVisPresetMap& TransformZoomPresets();
const CVisPresetMap& TransformColorPresets();
const CVisPresetMap& TransformRadiusPresets();
