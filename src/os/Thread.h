#pragma once

#include <memory>

namespace pxvis::os {

// A thread of the system. It takes none of the process's signals, which are for the host's threads,
// but those of its own faults.
// Start, Join and Detach by one thread at a time, and not by the thread itself.
class Thread
{
public:
    Thread();
    ~Thread(); // joins
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    // Joins what ran before, then runs body(context), which must not throw, on a thread of its own.
    // 0, or the system's error number if there is no thread to be had.
    int Start(void (*body)(void*), void* context);

    // Waits until the body has returned; nothing if none was started.
    void Join();

    // Lets go of the thread: nobody waits for it any more.
    void Detach();

private:
    struct Native;
    std::unique_ptr<Native> m_native; // null: nothing to join
};

// The system's number of the calling thread; above 0.
int CurrentThreadId();

// 0 is the ordinary priority of a thread, 1 and 2 stand above it, -1 and -2 below, 15 and -15 are
// the ends. False if the system doesn't allow it, which is usual above 0.
bool SetThreadPriority(int threadId, int priority);

// 0 while the process has a thread of that number, or else the system's error number.
int ThreadError(int threadId);

// How many processors the process may run on; at least 1.
int ProcessorCount();

}
