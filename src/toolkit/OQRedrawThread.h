#pragma once

#include "foundation/OQEvent.h"
#include "foundation/OQThread.h"

#include <atomic>

class OQBasicWnd;

// Has a window painted at a steady rate, and never again before the last paint is done. While the
// window has nothing new to show, it rests: a message asks it now and then whether that is still
// so. The thread touches nothing else of the window, and must be stopped before its object goes.
class OQRedrawThread final : public OQThread
{
public:
    // `rate`: paints a second at most; below 1 counts as 1.
    // `restMessage` comes ten times a second while it rests.
    OQRedrawThread(OQBasicWnd& window, double rate, uint32_t restMessage);
    ~OQRedrawThread() override;

    // The paint is done, or the message answered. Any thread.
    void OnPainted() { m_painted.Set(); }

    // From the next paint or message on. Any thread.
    void SetResting(bool rests) { m_rests = rests; }

    bool IsResting() const { return m_rests; }

protected:
    uint8_t Run() override;

private:
    OQBasicWnd& m_window;
    double m_period; // ms
    uint32_t m_restMessage;
    std::atomic<bool> m_rests = false;
    OQEvent m_painted { true };
};
