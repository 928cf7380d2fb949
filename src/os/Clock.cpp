#include "os/Clock.h"

#include <ctime>

namespace pxvis::os {

int64_t MonotonicNanoseconds()
{
    timespec now {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t { now.tv_sec } * 1'000'000'000 + now.tv_nsec;
}

}
