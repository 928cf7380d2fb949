#pragma once

#include "foundation/IOQMessageQueue.h"

#include <cstddef>

namespace pxvis {

// Message queues for threads that no windows system serves: each thread that makes a window has
// one, and calls Pump or WaitAndPump, or has another loop call Pump when the descriptor is
// readable. A loop pumps what is due when it begins; what that brings about comes next time. Timers
// that are late by several intervals fire once.
class PollMessageQueues final : public IOQMessageQueues
{
public:
    static constexpr size_t mostMessages = 16384; // that wait on one queue; Post refuses more

    static PollMessageQueues& Get(); // never destroyed

    std::unique_ptr<IOQMessageWindow> MakeWindow(IOQMessageWindowEvents& events) override;
    bool Pump() override;
    int GetDescriptor() override; // -1 only if the system has no more descriptors

    // Waits until something is due, for ever below 0 ms, and delivers it. False if nothing was.
    bool WaitAndPump(int32_t milliseconds);

private:
    PollMessageQueues() = default;
};

}
