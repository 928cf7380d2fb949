#include "toolkit/OQRedrawThread.h"

#include "os/Clock.h"
#include "toolkit/OQBasicWnd.h"

#include <algorithm>
#include <cstdint>

OQRedrawThread::OQRedrawThread(OQBasicWnd& window, double rate, uint32_t restMessage)
    : m_window(window)
    , m_period(1000.0 / std::max(rate, 1.0))
    , m_restMessage(restMessage)
{
}

OQRedrawThread::~OQRedrawThread()
{
    Finish();
}

uint8_t OQRedrawThread::Run()
{
    constexpr int32_t longestPaint = 1000; // ms; then something is wrong, or the window is hidden
    constexpr double shortestPause = 5.0; // ms, so that others have their turn
    constexpr double restPeriod = 100.0; // ms
    constexpr double million = 1e6; // ns in a ms
    int64_t due = pxvis::os::MonotonicNanoseconds();
    while (!IsCancelled()) {
        m_painted.Reset();
        const int64_t begin = pxvis::os::MonotonicNanoseconds();
        if (m_rests)
            m_window.Post(m_restMessage);
        else
            m_window.Invalidate();
        Wait(longestPaint, &m_painted);
        const auto period = static_cast<int64_t>((m_rests ? restPeriod : m_period) * million);
        // What a pause was too long, since the system counts in whole milliseconds and wakes
        // threads late, the next one makes up for: the rate is kept on the whole.
        const int64_t late = begin - due;
        due = late < period ? due : begin;
        due += period;
        const int64_t now = pxvis::os::MonotonicNanoseconds();
        const double pause = std::max(static_cast<double>(due - now) / million, shortestPause);
        Wait(static_cast<int32_t>(pause));
    }
    return 1;
}
