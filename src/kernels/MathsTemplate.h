#pragma once

#include "kernels/MathsCoefficients.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>

namespace pxvis::maths {

#define PXVIS_LANES
#include "kernels/MathsTemplate.inl"
#undef PXVIS_LANES

}
