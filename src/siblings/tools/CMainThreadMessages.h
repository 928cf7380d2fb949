#pragma once

#include "foundation/IOQMainThreadMessages.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <vector>

struct OQToolsSetup;

class CMainThreadMessages final : public IOQMainThreadMessages
{
public:
    using Callback = IMainThreadMessageManagerCallback;

    static constexpr size_t kMostPending = 16384; // Post refuses more

    // Makes the calling thread the main one, unless there is one and this user brings no waker or
    // another one did. Null: no waker.
    void Open(const OQToolsSetup* setup);
    void Close(); // drops what is pending

    bool Post(Callback* callback) override;
    int32_t Deliver(Callback* callback) override;
    int32_t Forget(Callback* callback) override;
    int32_t DeliverPending() override;

private:
    struct Message
    {
        Callback* callback;
        uint64_t number; // of the post
    };

    bool IsMainThread() const;
    int32_t DeliverFor(Callback* callback, std::unique_lock<std::mutex>& guard);

    std::mutex m_lock; // of all below; not held while anybody is called
    std::condition_variable m_returned; // a call has
    std::deque<Message> m_pending; // in the order of their numbers
    uint64_t m_posted = 0;
    std::vector<Callback*> m_called; // on the main thread right now, each by the one before
    IOQMainThreadWaker* m_waker = nullptr;
    int32_t m_mainThread = 0; // the system's number; 0: none
    bool m_isWoken = false; // and hasn't delivered since
};
