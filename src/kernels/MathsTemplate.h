#pragma once

#include "kernels/MathsCoefficients.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>

namespace pxvis::maths {

#define PXVIS_LANES
#define PXVIS_LANE_FUNCTION
#include "kernels/MathsTemplate.inl"
#undef PXVIS_LANE_FUNCTION
#undef PXVIS_LANES

}
