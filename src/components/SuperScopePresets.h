#pragma once

#include "engine2d/CVisPropertyList.h"

const CVisPresetMap& SuperScopePresets();
