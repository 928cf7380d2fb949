#pragma once

#include "foundation/IOQMessageQueue.h"

// A message window on Qt's queue of the thread that makes it. Internal.
class OQQtMessageWindow final : public IOQMessageWindow
{
public:
    explicit OQQtMessageWindow(IOQMessageWindowEvents& events);
    ~OQQtMessageWindow() override;

    bool Post(uint32_t message) override;
    bool SetTimer(intptr_t id, int32_t milliseconds) override;
    bool KillTimer(intptr_t id) override;

private:
    class Receiver;
    Receiver* m_receiver; // owned; outlives the window if that goes while it handles something
};
