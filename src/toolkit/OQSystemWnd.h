#pragma once

#include "toolkit/OQMessageWnd.h"

#include <functional>

// Turns what the platform tells the window into its events.
class OQSystemWnd : public OQMessageWnd
{
public:
    using OQMessageWnd::OQMessageWnd;

protected:
    using MessageHandler = std::function<void(intptr_t p1, intptr_t p2)>;

    // From now on the message runs the handler in place of OnMessage.
    void RegisterMessage(uint32_t message, MessageHandler handler);

    bool OnPlatformEvent(QEvent& event) override;
    void DispatchMessage(uint32_t message, intptr_t p1, intptr_t p2) override;

private:
    void Paint();

    OQMap<uint32_t, MessageHandler> m_messages;
    OQMouseEvent m_lastMouse;
};
