#pragma once

#include "foundation/IOQMainThreadMessages.h"
#include "foundation/IOQMessageQueue.h"
#include "foundation/OQSiblingModules.h"

// Has main-thread messages delivered by the message queue of the thread that makes it. Goes to the
// tools module in the OQToolsSetup of that thread; stays until the module is unloaded.
class OQMainThreadWindow final : public IOQMainThreadWaker, private IOQMessageWindowEvents
{
public:
    explicit OQMainThreadWindow(OQSiblingModules& modules = OQSiblingModules::Get());

    bool IsValid() const { return m_window != nullptr; } // false: the thread has no queue

    bool WakeMainThread() override;

private:
    void OnMessage(uint32_t message) override;

    void OnTimer(intptr_t) override { }

    OQSiblingModules& m_modules;
    std::unique_ptr<IOQMessageWindow> m_window;
};
