#pragma once

#include <cstdint>

namespace pxvis::os {

// Nanoseconds of the system's monotonic clock; the zero point is arbitrary.
int64_t MonotonicNanoseconds();

}
