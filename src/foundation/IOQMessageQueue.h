#pragma once

#include <cstdint>
#include <memory>

// What a message window calls, on the thread that made it. It may delete the window while it is
// called.
class IOQMessageWindowEvents
{
public:
    virtual void OnMessage(uint32_t message) = 0;
    virtual void OnTimer(intptr_t id) = 0;

protected:
    ~IOQMessageWindowEvents() = default;
};

// An address on a thread's message queue, with no picture. Made and destroyed on that thread; a
// message or timer that is due is not delivered once it is gone.
class IOQMessageWindow
{
public:
    virtual ~IOQMessageWindow() = default;

    // Any thread. False if the queue takes no more.
    virtual bool Post(uint32_t message) = 0;

    // The owner's thread only. A timer goes on until it is killed; setting one anew restarts it.
    // An interval below 1 ms counts as 1.
    virtual bool SetTimer(intptr_t id, int32_t milliseconds) = 0;
    virtual bool KillTimer(intptr_t id) = 0; // false if there is none of that number
};

// The message queues of the process's threads: a windows system's where there is one, or else the
// poll loop's. Any thread.
class IOQMessageQueues
{
public:
    // A window on the queue of the calling thread, which some loop there pumps. Null if there can
    // be none. `events` outlives it.
    virtual std::unique_ptr<IOQMessageWindow> MakeWindow(IOQMessageWindowEvents& events) = 0;

    // Delivers what is due on the calling thread and waits for nothing. True if there was anything.
    virtual bool Pump() = 0;

    // Readable while something is due on the calling thread's queue; not to be read from. -1 where
    // a queue has none: then who waits for something else pumps every few milliseconds.
    virtual int GetDescriptor() { return -1; }

    // The ones in use; null before there are any.
    static IOQMessageQueues* Get();
    // From now on these, which must outlive the process's threads. Null: none.
    static void Install(IOQMessageQueues* queues);

protected:
    ~IOQMessageQueues() = default;
};
