#pragma once

#include "foundation/IOQMessageQueue.h"

// Qt's message queues, on threads that have them; on others those of a fallback. Installed once
// for the process.
class OQQtMessageQueues final : public IOQMessageQueues
{
public:
    explicit OQQtMessageQueues(IOQMessageQueues& fallback) // not owned
        : m_fallback(fallback)
    {
    }

    std::unique_ptr<IOQMessageWindow> MakeWindow(IOQMessageWindowEvents& events) override;
    bool Pump() override;

private:
    IOQMessageQueues& m_fallback;
};
