#pragma once

#include <cstdint>
#include <limits>

// The time and the random numbers that one engine sees. A window's engine uses its thread's own
// context; a renderer and a test make one each and install it, so that the same input always gives
// the same picture. Not for waits and time-outs: those use the monotonic clock.
struct OQEngineContext
{
    bool virtualClock = false; // false: OQClockNanoseconds is the monotonic clock
    int64_t virtualNanoseconds = 0;

    uint32_t randomState = 1;
    bool equationsSeeded
        = false; // rand and randn of the equations seed the generator at their first use

    int32_t mostThreads = 0; // that a loop may take; 0: as many as there are processors

    // What the running operation may still cost, in units of about a nanosecond. Counted, not
    // measured, so that the same input is cut off at the same place everywhere. Set from outside it
    // bounds each operation further.
    int64_t workLeft = std::numeric_limits<int64_t>::max();
};

// Installs a context for the calling thread as long as it lives; null leaves the thread's current
// one.
class OQEngineContextScope
{
public:
    explicit OQEngineContextScope(OQEngineContext* context);
    ~OQEngineContextScope();
    OQEngineContextScope(const OQEngineContextScope&) = delete;
    OQEngineContextScope& operator=(const OQEngineContextScope&) = delete;

private:
    OQEngineContext* m_previous;
};

// The installed context, or else the thread's own, which uses the monotonic clock.
OQEngineContext& OQCurrentEngineContext();

int64_t OQClockNanoseconds();
int64_t OQClockMilliseconds();

// The generator that "rand" means everywhere: state * 214013 + 2531011, bits 16 to 30 of it. 0 to
// 0x7FFF.
int32_t OQRand();
void OQSeedRand(uint32_t seed);

// Seeds the generator at the first call in a context with a process-wide counter, 0 in a virtual
// context, plus the clock in milliseconds: threads that start in one millisecond differ.
void OQSeedRandForEquations();

// Takes so much from what the running operation may still cost. False, with nothing taken, if less
// is left: then the caller leaves undone what it would have done.
bool OQTakeWork(int64_t work);

// For work whose cost shows only when it is done: what is left becomes 0 if it was more than that.
void OQSpendWork(int64_t work);
