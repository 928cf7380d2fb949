#pragma once

#include "os/Thread.h"

#include <atomic>
#include <cstdint>

// A thread that can be asked to stop. A class of its own derives from it for each kind of work and
// calls Stop in its destructor, since Run may need what that destructor takes away. Start, Stop and
// Join by one thread at a time, and not by the thread itself; the rest by any thread.
// FIXME: time-outs of Stop, priorities, waits that the request to stop ends, main-thread messages.
class OQThread
{
public:
    OQThread() = default;
    virtual ~OQThread();
    OQThread(const OQThread&) = delete;
    OQThread& operator=(const OQThread&) = delete;

    // True, too, if it runs already, unless `force` stops it first and starts it anew. False if the
    // thread doesn't want to start or the system has none; the latter is logged.
    virtual bool Start(bool force = false);

    // Asks it to stop, waits for that as long as it takes, and gives what Run gave; 1 if it was
    // never started.
    virtual uint8_t Stop();

    // The request to stop, or its withdrawal.
    virtual void Cancel(bool cancel) { m_cancelled = cancel; }

    // Waits for the end without asking for it.
    virtual void Join() { m_thread.Join(); }

    bool IsRunning() const { return m_running; }

    bool IsCancelled() const { return m_cancelled; }

    // What Run gave; 0 before it has, after Stop, and if Run threw.
    uint8_t GetResult() const { return m_result; }

    // How often it was started.
    int32_t GetStartCount() const { return m_startCount; }

protected:
    // The work. Long work looks at IsCancelled every few milliseconds.
    virtual uint8_t Run() = 0;

    // False keeps it from starting.
    virtual bool OnBeforeStart() { return true; }

private:
    bool StartThread();
    void RunGuarded() noexcept;

    pxvis::os::Thread m_thread;
    std::atomic<bool> m_running = false;
    std::atomic<bool> m_cancelled = false;
    std::atomic<int32_t> m_startCount = 0;
    std::atomic<uint8_t> m_result = 0;
};
