#pragma once

#include <functional>
#include <memory>

namespace pxvis::player {

// Does things one after the other on a thread of its own, for calls that may wait for a device or a
// file for ever. Such a thread is given up, with all that what it does has hold of.
class CommandThread
{
public:
    CommandThread();
    ~CommandThread(); // finishes without waiting; may be on the thread itself
    CommandThread(const CommandThread&) = delete;
    CommandThread& operator=(const CommandThread&) = delete;

    // Any thread. Nothing is done any more behind Finish, nor where the system has no threads left.
    void Post(std::function<void()> command);
    void Finish();

    // After Finish: whether it got there in that time.
    bool WaitForEnd(int milliseconds);

private:
    struct State;

    static void Run(void* state);

    std::shared_ptr<State> m_state;
};

}
