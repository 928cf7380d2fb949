#pragma once

#include "os/Event.h"

// What a wait can take besides an event: a descriptor that becomes readable; -1: none.
using OQWaitHandle = int;

// A flag that threads wait for. One without manual reset lets one wait through for each Set. Any
// thread; whoever made it keeps it until nobody waits any more.
class OQEvent
{
public:
    explicit OQEvent(bool manualReset)
        : m_event(manualReset)
    {
    }

    void Set() { m_event.Set(); }

    void Reset() { m_event.Reset(); }

    // -1: for ever. False if the time passed, or if the system had no descriptor for the event.
    bool Wait(int32_t milliseconds) { return m_event.Wait(milliseconds); }

    // Readable while the event is set. A wait for the handle resets nothing.
    OQWaitHandle GetHandle() const { return m_event.GetDescriptor(); }

    // For a wait on several things.
    pxvis::os::Event& Native() { return m_event; }

private:
    pxvis::os::Event m_event;
};
