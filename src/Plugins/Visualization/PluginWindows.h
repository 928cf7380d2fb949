#pragma once

#include <cstdint>

// What the modules of the library need of windows: message queues, dialogs, the main thread. Each
// operation does its work once a process; what it makes stays until the process ends.
class PluginWindows
{
public:
    // Before the modules load. Asks nothing of the windows system yet.
    static void Prepare();

    // On the thread that has just got its first window: its queue carries main-thread messages from
    // now on.
    static void UseThread();

    // The tools module could not be loaded and the user wasn't told yet.
    static bool HasUntoldFailure();

    // Tells it: in a box over the window, or on standard error without one.
    static void TellFailure(uintptr_t window);
};
