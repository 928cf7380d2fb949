#pragma once

#include "foundation/OQEvent.h"
#include "foundation/OQThread.h"

class OQBasicWnd;

// Has a window painted at a steady rate, and never again before the last paint is done. It touches
// nothing but the window's invalidation; it must be stopped before the window's object goes.
class OQRedrawThread final : public OQThread
{
public:
    // `rate`: paints a second at most; below 1 counts as 1.
    OQRedrawThread(OQBasicWnd& window, double rate);
    ~OQRedrawThread() override;

    // The paint is done. Any thread.
    void OnPainted() { m_painted.Set(); }

protected:
    uint8_t Run() override;

private:
    OQBasicWnd& m_window;
    double m_period; // ms
    OQEvent m_painted { true };
};
