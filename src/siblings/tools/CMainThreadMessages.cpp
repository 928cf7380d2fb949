#include "siblings/tools/CMainThreadMessages.h"

#include "foundation/IOQWindowServices.h"
#include "os/Thread.h"

#include <algorithm>

void CMainThreadMessages::Open(const OQToolsSetup* setup)
{
    IOQMainThreadWaker* waker = setup ? setup->mainThread : nullptr;
    const std::lock_guard guard(m_lock);
    if (m_mainThread != 0 && (m_waker || !waker))
        return;
    m_mainThread = pxvis::os::CurrentThreadId();
    m_waker = waker;
}

void CMainThreadMessages::Close()
{
    const std::lock_guard guard(m_lock);
    m_pending.clear();
    m_waker = nullptr;
    m_mainThread = 0;
    m_isWoken = false;
}

bool CMainThreadMessages::Post(Callback* callback)
{
    if (!callback)
        return false;
    IOQMainThreadWaker* waker = nullptr;
    try {
        const std::lock_guard guard(m_lock);
        if (m_pending.size() >= kMostPending)
            return false;
        m_pending.push_back({ callback, m_posted++ });
        if (!m_isWoken)
            waker = m_waker;
        m_isWoken = m_isWoken || waker;
    } catch (...) {
        return false; // no memory
    }
    if (waker && !waker->WakeMainThread()) {
        const std::lock_guard guard(m_lock);
        m_isWoken = false;
    }
    return true;
}

int32_t CMainThreadMessages::Deliver(Callback* callback)
{
    std::unique_lock guard(m_lock);
    return callback ? DeliverFor(callback, guard) : 0;
}

int32_t CMainThreadMessages::Forget(Callback* callback)
{
    std::unique_lock guard(m_lock);
    const auto dropped = std::erase_if(
        m_pending, [&](const Message& message) { return message.callback == callback; });
    if (!IsMainThread()) {
        m_returned.wait(
            guard, [&] { return std::ranges::find(m_called, callback) == m_called.end(); });
    }
    return static_cast<int32_t>(dropped);
}

int32_t CMainThreadMessages::DeliverPending()
{
    std::unique_lock guard(m_lock);
    if (IsMainThread())
        m_isWoken = false;
    return DeliverFor(nullptr, guard);
}

bool CMainThreadMessages::IsMainThread() const
{
    return m_mainThread == pxvis::os::CurrentThreadId();
}

// Null: for all. What is posted meanwhile comes the next time.
int32_t CMainThreadMessages::DeliverFor(Callback* callback, std::unique_lock<std::mutex>& guard)
{
    if (!IsMainThread())
        return 0;
    const uint64_t end = m_posted;
    for (int32_t calls = 0;; ++calls) {
        const auto first = std::ranges::find_if(m_pending,
            [&](const Message& message) { return !callback || message.callback == callback; });
        if (first == m_pending.end() || first->number >= end)
            return calls;
        Callback* called = first->callback;
        m_pending.erase(first);
        m_called.push_back(called);
        guard.unlock();
        called->OnMainThreadMessage();
        guard.lock();
        m_called.pop_back();
        m_returned.notify_all();
    }
}
