#pragma once

#include <memory>

namespace pxvis::os {

// A thread of the system. It takes none of the process's signals, which are for the host's threads,
// but those of its own faults.
// Start and Join by one thread at a time, and not by the thread itself.
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

private:
    struct Native;
    std::unique_ptr<Native> m_native; // null: nothing to join
};

// How many processors the process may run on; at least 1.
int ProcessorCount();

}
