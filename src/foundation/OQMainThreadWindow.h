#pragma once

#include "foundation/IOQMainThreadMessages.h"
#include "foundation/IOQMessageQueue.h"
#include "foundation/OQSiblingModules.h"

// Has main-thread messages delivered by the message queue of the thread that makes it, which is the
// main one thereby. Is handed to OQSiblingModules::SetUpTools; stays until all modules are
// unloaded.
class OQMainThreadWindow final : public IOQMainThreadWaker, private IOQMessageWindowEvents
{
public:
    explicit OQMainThreadWindow(OQSiblingModules& modules = OQSiblingModules::Get());

    bool IsValid() const { return m_window != nullptr; } // false: the thread has no queue

    bool WakeMainThread() override;

    int32_t GetMainThreadId() const override { return m_threadId; }

private:
    void OnMessage(uint32_t message) override;

    void OnTimer(intptr_t) override { }

    OQSiblingModules& m_modules;
    const int32_t m_threadId;
    std::unique_ptr<IOQMessageWindow> m_window;
};
