#pragma once

#include <cstdint>

// Who wants to be called on the main thread: the one that has the windows. Slots: add at the end
// only.
class IMainThreadMessageManagerCallback
{
public:
    virtual void OnMainThreadMessage() = 0;

protected:
    ~IMainThreadMessageManagerCallback() = default;
};

// Wakes the main thread, so that it calls IOQMainThreadMessages::DeliverPending soon. Slots: add at
// the end only.
class IOQMainThreadWaker
{
public:
    // Any thread. False if it couldn't; the next post tries again.
    virtual bool WakeMainThread() = 0;

protected:
    ~IOQMainThreadWaker() = default;
};

// Carries calls from any thread to the main thread: the one that started the tools module, or,
// where several users did, the first that brought a waker along. A callback stays where it is until
// Forget has been called for it or until all that was posted for it is delivered. Nothing is
// thrown. Slots: add at the end only.
class IOQMainThreadMessages
{
public:
    // Any thread. Each post is one later call of OnMainThreadMessage. False if too many are pending
    // already.
    virtual bool Post(IMainThreadMessageManagerCallback* callback) = 0;

    // Calls at once for all that is pending for this callback. The main thread only: on others it
    // leaves everything as it is. How many calls it made.
    virtual int32_t Deliver(IMainThreadMessageManagerCallback* callback) = 0;

    // Drops what is pending for this callback, which may be destroyed afterwards: on other threads
    // than the main one it waits for a call that is under way. How many were dropped.
    virtual int32_t Forget(IMainThreadMessageManagerCallback* callback) = 0;

    // Calls for all that is pending now, in the order of the posts. The main thread only, when it
    // pumps its messages. How many calls it made.
    virtual int32_t DeliverPending() = 0;

protected:
    ~IOQMainThreadMessages() = default;
};
