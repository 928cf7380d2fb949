#pragma once

#include "engine2d/CVisPropertyList.h"

// Of the Super Transform and, but for scrolls, zooms and turns, of the Dynamic Transform.
const CVisPresetMap& SuperTransformPresets();
const CVisPresetMap& SuperTransformZoomPresets();
const CVisPresetMap& SuperTransformScrollPresets();
const CVisPresetMap& SuperTransformRotatePresets();
const CVisPresetMap& SuperTransformFadePresets();
const CVisPresetMap& SuperTransformAddPresets();

// The value of "Kitchen Sink": many transforms, separated by "|".
extern const OQChar* const kitchenSinkTransforms;
