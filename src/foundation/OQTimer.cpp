#include "foundation/OQTimer.h"

#include "os/Clock.h"

using pxvis::os::MonotonicNanoseconds;

OQTimer::OQTimer()
    : m_start(MonotonicNanoseconds())
{
}

void OQTimer::Start()
{
    m_start = MonotonicNanoseconds();
}

int64_t OQTimer::GetElapsed(bool restart)
{
    const int64_t now = MonotonicNanoseconds();
    return now - (restart ? m_start.exchange(now) : m_start.load());
}

double OQTimer::GetElapsedMs(bool restart)
{
    return static_cast<double>(GetElapsed(restart)) / 1e6;
}
