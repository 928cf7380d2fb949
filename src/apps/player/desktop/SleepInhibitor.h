#pragma once

#include <memory>

namespace pxvis::player {

// Keeps the screen from going dark while it is on: asks the desktop's org.freedesktop.ScreenSaver,
// and the X server. Where neither listens, nothing. User-interface thread.
class SleepInhibitor
{
public:
    SleepInhibitor();
    ~SleepInhibitor();

    void SetOn(bool on);

private:
    struct State;

    std::unique_ptr<State> m_state;
};

}
