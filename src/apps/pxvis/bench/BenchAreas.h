#pragma once

#include "apps/pxvis/bench/BenchTable.h"

namespace pxvis::bench {

// Each measures those of its cases that the table wants.

void BenchMaths(BenchTable& table); // a value
void BenchEquations(BenchTable& table); // an evaluation; the floor is native code
void BenchMaps(BenchTable& table); // a pixel
void BenchTransforms(BenchTable& table); // a pixel
void BenchSurfaces(BenchTable& table); // a pixel, or a star
void BenchFrames(BenchTable& table); // a frame of each shipped script, and of videos of them

}
