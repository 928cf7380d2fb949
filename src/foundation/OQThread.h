#pragma once

#include "foundation/IOQMainThreadMessages.h"
#include "foundation/OQEvent.h"
#include "os/Thread.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>

enum OQWaitResult : int32_t
{
    OQWaitCancelled = 0,
    OQWaitThreadEnded = 1, // also where none runs
    OQWaitEvent = 2, // what was waited for besides
    OQWaitTimeout = 258,
    OQWaitFailed = -1,
};

// A thread that can be asked to stop. A class of its own derives from it for each kind of work and
// calls Finish in its destructor, since Run may need what that destructor takes away. Start, Stop
// and the setters by one thread at a time, and not by the thread itself; the rest by any thread.
//
// No thread is killed. One that is still in Run when Stop's time is over is abandoned: Stop tells
// that it has ended, while it goes on in an object that its owner believes free. Hence, as long as
// HasAbandonedRun says so, the object refuses to start, and its destructor waits. Who can't wait
// for that hands the object to Discard. What Run uses beyond the object must live as long as Run
// does.
class OQThread : public IMainThreadMessageManagerCallback
{
public:
    OQThread();

    void OnMainThreadMessage() override;

    virtual ~OQThread();
    OQThread(const OQThread&) = delete;
    OQThread& operator=(const OQThread&) = delete;

    // True, too, if it runs already, unless `force` stops it first and starts it anew. False if the
    // thread doesn't want to start, the system has none (which is logged), or an abandoned run is
    // still in the object. `priority` as for SetPriority.
    virtual bool Start(int32_t priority = 0, bool force = false);

    // Asks it to stop and waits for that. -1: as long as SetStopTimeout says. Gives what Run gave;
    // 1 if it was never started, 0 if it was abandoned.
    virtual uint8_t Stop(int32_t milliseconds = -1);

    // The request to stop, or its withdrawal.
    virtual void Cancel(bool cancel);

    // Calls HandleMainThreadMessage for what is pending, if this is the main thread.
    virtual void DeliverMainThreadMessages();

    // 0 is the ordinary one, -2 to 2 stand below and above it, -15 and 15 are the ends. False if it
    // doesn't run or the system doesn't allow it.
    virtual bool SetPriority(int32_t priority);

    virtual bool IsRunning() const;

    // Waits for the end without asking for it.
    virtual void Join();

    // Until the request to stop, the thread's end, or what is given besides; for ever if the time
    // is below 0. For the thread itself and for others.
    virtual OQWaitResult WaitAny(int32_t milliseconds, OQWaitHandle handle = -1);
    virtual OQWaitResult Wait(int32_t milliseconds, OQEvent* event = nullptr);
    // The same, while the calling thread's message queue is served.
    virtual OQWaitResult WaitAndPump(int32_t milliseconds, OQEvent* event = nullptr);

    virtual uint8_t GetResult() const; // what Run gave; 0 before it has, after Stop, if Run threw
    virtual OQWaitHandle GetHandle() const; // readable once the thread has ended; -1: none runs
    virtual int32_t GetThreadId() const; // the system's number; 0: none since the last Stop

    virtual bool IsCancelled() const { return m_cancelled; }

    // Readable while the thread is asked to stop. From a start to the next Stop; -1 otherwise.
    virtual OQWaitHandle GetCancelEvent() const;

    virtual int32_t GetStartCount() const { return m_startCount; }

    // Of a Stop that is given -1; below 0: it waits for ever.
    virtual void SetStopTimeout(int32_t milliseconds) { m_stopTimeout = milliseconds; }

    // Whether Stop serves the calling thread's message queue while it waits.
    virtual void SetPumpWhileStopping(bool pump) { m_pumpWhileStopping = pump; }

    virtual void SetStopPoll(int32_t milliseconds) { m_stopPoll = milliseconds; }

    // Whether Stop delivers pending main-thread messages; otherwise it drops them.
    virtual void SetFlushMessages(bool flush) { m_flushMessages = flush; }

    int32_t GetPriority() const { return m_priority; } // of the last Start

    // Whether a run that Stop gave up is still in the object.
    bool HasAbandonedRun() const;

    // Stops and destroys it; if its run had to be abandoned, keeps it until a later Discard finds
    // that the run has left it.
    static void Discard(std::unique_ptr<OQThread> thread);

protected:
    // The work. Long work looks at IsCancelled every few milliseconds, and what would block waits
    // for GetCancelEvent as well. By default it waits for the request to stop and gives 1.
    virtual uint8_t Run();

    virtual void HandleMainThreadMessage() { } // on the main thread, for each post

    // False keeps it from starting.
    virtual bool OnBeforeStart() { return true; }

    virtual bool StartThread(int32_t priority);

    // Whether Stop may give up a run whose time is over.
    virtual bool MayHardKill() { return true; }

    // Stops it, waits until no run is in the object any more, not even an abandoned one, and drops
    // what was posted for the main thread.
    void Finish();

    // Any thread. Has HandleMainThreadMessage called on the main thread; false without tools.
    bool PostMainThreadMessage();

private:
    struct RunState;

    static void RunBody(void* context);
    static uint8_t RunGuarded(OQThread& thread) noexcept;
    std::shared_ptr<RunState> GetCurrent() const;
    std::shared_ptr<RunState> GetState() const;
    void WaitForEnd(const std::shared_ptr<RunState>& state, int32_t timeout);
    void GiveUp(const std::shared_ptr<RunState>& state);

    pxvis::os::Thread m_thread;
    mutable std::mutex
        m_lock; // of the two pointers, and of the flag with the event that mirrors it
    std::shared_ptr<RunState> m_current; // null: never started, or stopped
    std::shared_ptr<RunState> m_abandoned;
    std::atomic<bool> m_cancelled = false;
    std::atomic<int32_t> m_startCount = 0;
    std::atomic<int32_t> m_priority = 0;
    int32_t m_stopTimeout = -1; // milliseconds
    int32_t m_stopPoll = 20; // milliseconds between the looks of Stop
    bool m_pumpWhileStopping = false;
    bool m_flushMessages = true;
};
