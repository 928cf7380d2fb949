#pragma once

#include <cstdint>

// A command on its way to a command target. What the numbers mean is up to the target.
struct OQCmd
{
    int32_t command = 0;
    int64_t p1 = 0;
    int64_t p2 = 0;
    int64_t p3 = 0;
    bool isTimer = false; // of the target itself: 1 sets the timer p1 to p2 ms, 2 kills it
};

// Which commands a pump takes.
class IPumpFilter
{
public:
    virtual bool IsWanted(const OQCmd& cmd) const = 0; // others stay where they are
    // Whether it may run on a thread that isn't the target's own.
    virtual bool MayRunOnAnyThread(const OQCmd& cmd) const = 0;

protected:
    ~IPumpFilter() = default;
};

// Takes commands from any thread and runs them on its own. Slots: add at the end only.
class IOQCmdTarget
{
public:
    virtual bool IsValid() const = 0; // false: it has no message queue and takes no commands

    // Any thread. Runs later on the target's thread. False if it can't be taken.
    virtual bool PostCmd(int32_t command, int64_t p1 = 0, int64_t p2 = 0, int64_t p3 = 0) = 0;
    virtual bool PostCmd(const OQCmd& cmd) = 0;
    // Runs at once, on the calling thread.
    virtual void SendCmd(int32_t command, int64_t p1 = 0, int64_t p2 = 0, int64_t p3 = 0) = 0;
    virtual void SendCmd(const OQCmd& cmd) = 0;

    // Runs what is pending, of that what the filter wants; all without one.
    virtual void Pump(const IPumpFilter* filter = nullptr) = 0;

    // Any thread; from another one than the target's it takes effect when that pumps. Below 1 ms
    // counts as 1.
    virtual bool SetTimer(int64_t id, int32_t milliseconds) = 0;
    virtual bool KillTimer(int64_t id) = 0;

protected:
    ~IOQCmdTarget() = default;
};
