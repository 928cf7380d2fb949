#pragma once

class IOQDllString;

// What the tools module knows of the user who sits before it. Nothing is thrown. Slots: add at the
// end only.
class IOQUserInterface
{
public:
    // Handles what is due on the message queue of the calling thread, as long as its work keeps the
    // thread's own loop waiting; waits for nothing.
    virtual void PumpMessages() = 0;

    // The name that the user logs in by, or else his number. Any thread.
    virtual void GetUserName(IOQDllString& name) const = 0;

protected:
    ~IOQUserInterface() = default;
};
