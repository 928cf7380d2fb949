#pragma once

#include "os/Descriptor.h"

#include <atomic>
#include <cstdint>
#include <span>

namespace pxvis::os {

// A flag that threads wait for, alone or together with sockets and other descriptors. One that
// isn't reset by hand lets one wait through for each time it was set and resets itself by that; set
// twice before anybody waits, it counts once. What a thread wrote before Set is seen after the
// wait. Any thread.
class Event
{
public:
    explicit Event(bool manualReset);

    // False: the system has no more descriptors. Such an event is never set.
    bool IsOpen() const { return m_descriptor.IsOpen(); }

    void Set();
    void Reset();

    // Below 0 ms: for ever. False if the time passed, and at once where it would wait for ever for
    // an event that isn't open.
    bool Wait(int32_t milliseconds);

    // Readable while the event is set; not to be read from. -1 if it isn't open.
    int GetDescriptor() const { return m_descriptor.Get(); }

private:
    friend int WaitAny(std::span<const struct WaitItem> items, int32_t milliseconds);

    bool Take(); // after it was found set; false if another wait was faster

    Descriptor m_descriptor;
    const bool m_manualReset;
    std::atomic<uint32_t> m_order = 0; // carries what was written before Set
};

// An event, or a descriptor that becomes readable; neither: nothing to wait for.
struct WaitItem
{
    WaitItem(Event* event)
        : event(event)
    {
    }

    WaitItem(int descriptor)
        : descriptor(descriptor)
    {
    }

    Event* event = nullptr;
    int descriptor = -1;
};

enum : int
{
    WaitTimeout = -1,
    WaitFailed = -2, // nothing to wait for, or no memory
};

// Waits until one of at most 16 items is ready, as long as Event::Wait does, and gives the index of
// the first that is. Only that one, if it is an event that resets itself, is reset.
int WaitAny(std::span<const WaitItem> items, int32_t milliseconds);

}
