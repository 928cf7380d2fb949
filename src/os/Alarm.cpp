#include "os/Alarm.h"

#include <algorithm>
#include <sys/timerfd.h>

namespace pxvis::os {

Alarm::Alarm()
    : m_descriptor(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK))
{
}

void Alarm::SetAt(int64_t nanoseconds)
{
    nanoseconds = std::max<int64_t>(nanoseconds, 1); // 0 would clear it
    itimerspec moment {};
    moment.it_value.tv_sec = nanoseconds / 1'000'000'000;
    moment.it_value.tv_nsec = nanoseconds % 1'000'000'000;
    ::timerfd_settime(m_descriptor.Get(), TFD_TIMER_ABSTIME, &moment, nullptr);
}

void Alarm::Clear()
{
    const itimerspec never {};
    ::timerfd_settime(m_descriptor.Get(), 0, &never, nullptr);
}

}
