#include "foundation/OQEngineContext.h"

#include "os/Clock.h"

#include <atomic>

namespace {

thread_local OQEngineContext t_ownContext;
thread_local OQEngineContext* t_installedContext = nullptr;
std::atomic<uint32_t> g_seedCounter { 0 };

}

OQEngineContextScope::OQEngineContextScope(OQEngineContext* context)
    : m_previous(t_installedContext)
{
    if (context)
        t_installedContext = context;
}

OQEngineContextScope::~OQEngineContextScope()
{
    t_installedContext = m_previous;
}

OQEngineContext& OQCurrentEngineContext()
{
    return t_installedContext ? *t_installedContext : t_ownContext;
}

int64_t OQClockNanoseconds()
{
    const OQEngineContext& context = OQCurrentEngineContext();
    return context.virtualClock ? context.virtualNanoseconds : pxvis::os::MonotonicNanoseconds();
}

int64_t OQClockMilliseconds()
{
    return OQClockNanoseconds() / 1'000'000;
}

int32_t OQRand()
{
    uint32_t& state = OQCurrentEngineContext().randomState;
    state = state * 214013u + 2531011u;
    return static_cast<int32_t>((state >> 16) & 0x7FFF);
}

void OQSeedRand(uint32_t seed)
{
    OQCurrentEngineContext().randomState = seed;
}

void OQSeedRandForEquations()
{
    OQEngineContext& context = OQCurrentEngineContext();
    if (context.equationsSeeded)
        return;
    context.equationsSeeded = true;
    const uint32_t counter = context.virtualClock ? 0 : g_seedCounter.fetch_add(1);
    OQSeedRand(counter + static_cast<uint32_t>(OQClockMilliseconds()));
}

bool OQTakeWork(int64_t work)
{
    int64_t& left = OQCurrentEngineContext().workLeft;
    if (work > left)
        return false;
    left -= work;
    return true;
}

void OQSpendWork(int64_t work)
{
    int64_t& left = OQCurrentEngineContext().workLeft;
    left = work < left ? left - work : 0;
}
