#pragma once

#include "engine2d/CVisPropertyList.h"

const CVisPresetMap& ParticlePresets();
const CVisPresetMap& ParticleColorPresets();
const CVisPresetMap& ParticleBlendPresets();
