#include "platform/PollMessageQueues.h"

#include "os/Alarm.h"
#include "os/Clock.h"
#include "os/Event.h"

#include <algorithm>
#include <deque>
#include <mutex>
#include <vector>

namespace pxvis {

namespace {

using os::MonotonicNanoseconds;

class PollQueue
{
public:
    bool IsOpen() const { return m_alarm.IsOpen(); }

    int GetDescriptor() const { return m_alarm.GetDescriptor(); }

    bool Post(IOQMessageWindowEvents& target, uint32_t message);
    void SetTimer(IOQMessageWindowEvents& target, intptr_t id, int32_t milliseconds);
    bool KillTimer(IOQMessageWindowEvents& target, intptr_t id);
    void Forget(IOQMessageWindowEvents& target);
    bool Pump();

private:
    struct Message
    {
        IOQMessageWindowEvents* target;
        uint32_t message;
        uint64_t number; // of the post
    };

    struct Timer
    {
        IOQMessageWindowEvents* target;
        intptr_t id;
        int64_t interval; // nanoseconds
        int64_t due;
    };

    bool TakeMessage(uint64_t end, Message& message);
    bool TakeTimer(int64_t now, Timer& timer);
    void SetAlarm();

    std::mutex m_lock; // of all below
    std::deque<Message> m_messages; // in the order of their numbers
    uint64_t m_posted = 0;
    std::vector<Timer> m_timers;
    os::Alarm m_alarm;
};

bool PollQueue::Post(IOQMessageWindowEvents& target, uint32_t message)
{
    const std::lock_guard guard(m_lock);
    if (m_messages.size() >= PollMessageQueues::mostMessages)
        return false;
    m_messages.push_back({ &target, message, m_posted++ });
    if (m_messages.size() == 1)
        SetAlarm();
    return true;
}

void PollQueue::SetTimer(IOQMessageWindowEvents& target, intptr_t id, int32_t milliseconds)
{
    KillTimer(target, id);
    const int64_t interval = int64_t { std::max(milliseconds, 1) } * 1'000'000;
    const std::lock_guard guard(m_lock);
    m_timers.push_back({ &target, id, interval, MonotonicNanoseconds() + interval });
    SetAlarm();
}

bool PollQueue::KillTimer(IOQMessageWindowEvents& target, intptr_t id)
{
    const std::lock_guard guard(m_lock);
    const auto killed = std::erase_if(
        m_timers, [&](const Timer& timer) { return timer.target == &target && timer.id == id; });
    SetAlarm();
    return killed > 0;
}

void PollQueue::Forget(IOQMessageWindowEvents& target)
{
    const std::lock_guard guard(m_lock);
    std::erase_if(m_messages, [&](const Message& message) { return message.target == &target; });
    std::erase_if(m_timers, [&](const Timer& timer) { return timer.target == &target; });
    SetAlarm();
}

// Each target is called without the lock, and not touched afterwards: it may have gone.
bool PollQueue::Pump()
{
    const int64_t now = MonotonicNanoseconds();
    uint64_t end = 0;
    {
        const std::lock_guard guard(m_lock);
        end = m_posted;
    }
    bool any = false;
    for (Message message {}; TakeMessage(end, message);) {
        message.target->OnMessage(message.message);
        any = true;
    }
    for (Timer timer {}; TakeTimer(now, timer);) {
        timer.target->OnTimer(timer.id);
        any = true;
    }
    const std::lock_guard guard(m_lock);
    SetAlarm();
    return any;
}

// The first, of those posted before `end`.
bool PollQueue::TakeMessage(uint64_t end, Message& message)
{
    const std::lock_guard guard(m_lock);
    if (m_messages.empty() || m_messages.front().number >= end)
        return false;
    message = m_messages.front();
    m_messages.pop_front();
    return true;
}

// The one that has been due for the longest, which is due again after `now`.
bool PollQueue::TakeTimer(int64_t now, Timer& timer)
{
    const std::lock_guard guard(m_lock);
    const auto first = std::ranges::min_element(m_timers, {}, &Timer::due);
    if (first == m_timers.end() || first->due > now)
        return false;
    timer = *first;
    first->due += ((now - first->due) / first->interval + 1) * first->interval;
    return true;
}

void PollQueue::SetAlarm()
{
    if (!m_messages.empty())
        m_alarm.SetAt(0);
    else if (!m_timers.empty())
        m_alarm.SetAt(std::ranges::min_element(m_timers, {}, &Timer::due)->due);
    else
        m_alarm.Clear();
}

class PollMessageWindow final : public IOQMessageWindow
{
public:
    PollMessageWindow(std::shared_ptr<PollQueue> queue, IOQMessageWindowEvents& events)
        : m_queue(std::move(queue))
        , m_events(events)
    {
    }

    ~PollMessageWindow() override { m_queue->Forget(m_events); }

    bool Post(uint32_t message) override { return m_queue->Post(m_events, message); }

    bool SetTimer(intptr_t id, int32_t milliseconds) override
    {
        m_queue->SetTimer(m_events, id, milliseconds);
        return true;
    }

    bool KillTimer(intptr_t id) override { return m_queue->KillTimer(m_events, id); }

private:
    const std::shared_ptr<PollQueue> m_queue;
    IOQMessageWindowEvents& m_events;
};

thread_local std::shared_ptr<PollQueue> t_queue;

std::shared_ptr<PollQueue> ThisThreadsQueue()
{
    if (!t_queue) {
        auto queue = std::make_shared<PollQueue>();
        if (queue->IsOpen())
            t_queue = std::move(queue);
    }
    return t_queue;
}

}

PollMessageQueues& PollMessageQueues::Get()
{
    static auto* const queues = new PollMessageQueues;
    return *queues;
}

std::unique_ptr<IOQMessageWindow> PollMessageQueues::MakeWindow(IOQMessageWindowEvents& events)
{
    auto queue = ThisThreadsQueue();
    return queue ? std::make_unique<PollMessageWindow>(std::move(queue), events) : nullptr;
}

bool PollMessageQueues::Pump()
{
    const auto queue = t_queue;
    return queue && queue->Pump();
}

int PollMessageQueues::GetDescriptor()
{
    const auto queue = ThisThreadsQueue();
    return queue ? queue->GetDescriptor() : -1;
}

bool PollMessageQueues::WaitAndPump(int32_t milliseconds)
{
    const os::WaitItem items[] = { GetDescriptor() };
    return os::WaitAny(items, milliseconds) >= 0 && Pump();
}

}
