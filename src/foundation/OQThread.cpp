#include "foundation/OQThread.h"

#include "foundation/IOQMessageQueue.h"
#include "foundation/OQLog.h"
#include "foundation/OQSiblingModules.h"
#include "foundation/OQTimer.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <iterator>
#include <utility>
#include <vector>

namespace {

constexpr double handleTestAfterMs = 1000;
constexpr int32_t messagePollMs = 10; // for queues that can't wake who waits

// Null where nobody can have posted a message.
IOQMainThreadMessages* LoadedMessages()
{
    IOQTools* tools = OQSiblingModules::Get().LoadedTools();
    return tools ? tools->GetMainThreadMessages(0) : nullptr;
}

}

// What a run shares with the object that it runs in. Once Run has returned, its thread uses nothing
// else: the object may be gone then.
struct OQThread::RunState
{
    explicit RunState(OQThread& thread)
        : thread(thread)
    {
    }

    OQWaitResult Wait(int32_t milliseconds, pxvis::os::WaitItem besides)
    {
        const pxvis::os::WaitItem items[] = { &cancel, &ended, besides };
        const int index = pxvis::os::WaitAny(items, milliseconds);
        return index >= 0                     ? static_cast<OQWaitResult>(index)
            : index == pxvis::os::WaitTimeout ? OQWaitTimeout
                                              : OQWaitFailed;
    }

    OQThread& thread; // until Run has returned
    std::shared_ptr<RunState> self; // on its way to the new thread
    pxvis::os::Event cancel { true };
    pxvis::os::Event ended { true }; // of its own accord, or because nobody waits any more
    std::atomic<bool> running = true; // whoever clears it has ended the run
    std::atomic<bool> inside = true; // Run is still to return
    std::atomic<int32_t> threadId = 0; // 0: it hasn't got so far
    std::atomic<uint8_t> result = 0;
    int32_t priority = 0;
};

OQThread::OQThread() = default;

OQThread::~OQThread()
{
    Finish();
}

void OQThread::OnMainThreadMessage()
{
    try {
        HandleMainThreadMessage();
    } catch (...) {
        OQLog(OQLogError, u"OQThread::OnMainThreadMessage", u"A message failed.");
    }
}

bool OQThread::Start(int32_t priority, bool force)
{
    m_priority = priority;
    if (IsRunning() && !force)
        return true;
    Stop(-1);
    if (HasAbandonedRun()) {
        OQLog(OQLogError, u"OQThread::Start", u"The thread that was given up is still at work");
        return false;
    }
    Cancel(false);
    if (!OnBeforeStart())
        return false;
    {
        auto state = std::make_shared<RunState>(*this);
        const std::lock_guard guard(m_lock);
        if (m_cancelled) // meanwhile, by another thread
            state->cancel.Set();
        m_abandoned.reset();
        m_current = std::move(state);
    }
    if (StartThread(priority)) {
        ++m_startCount;
        return true;
    }
    // For those who wait for what won't come.
    const auto state = GetCurrent();
    state->threadId = -1;
    state->threadId.notify_all();
    state->running = false;
    state->ended.Set();
    const std::lock_guard guard(m_lock);
    m_current.reset();
    return false;
}

bool OQThread::StartThread(int32_t priority)
{
    const auto state = GetCurrent();
    state->priority = priority;
    int error = EMFILE;
    if (state->cancel.IsOpen() && state->ended.IsOpen()) {
        state->self = state;
        error = m_thread.Start(RunBody, state.get());
    }
    if (error == 0)
        return true;
    state->self.reset();
    OQLog(OQLogError, u"OQThread::StartThread", u"Error starting thread, errno=%d", { error });
    return false;
}

void OQThread::RunBody(void* context)
{
    const auto held = std::move(static_cast<RunState*>(context)->self);
    RunState& state = *held;
    const int32_t id = pxvis::os::CurrentThreadId();
    if (state.priority != 0)
        pxvis::os::SetThreadPriority(id, state.priority);
    state.threadId = id;
    state.threadId.notify_all();
    state.result = RunGuarded(state.thread);
    state.inside = false;
    state.inside.notify_all();
    state.running = false;
    state.ended.Set();
}

// Nobody above could catch what Run throws.
uint8_t OQThread::RunGuarded(OQThread& thread) noexcept
{
    try {
        return thread.Run();
    } catch (...) {
        OQLog(OQLogError, u"OQThread::Run", u"The thread ended by an exception");
        return 0;
    }
}

uint8_t OQThread::Run()
{
    const auto state = GetState();
    while (!IsCancelled())
        state->cancel.Wait(100);
    return 1;
}

uint8_t OQThread::Stop(int32_t milliseconds)
{
    if (m_startCount < 1)
        return 1;
    if (!m_cancelled || GetCancelEvent() < 0)
        Cancel(true);
    const auto state = GetCurrent();
    if (state) {
        WaitForEnd(state, milliseconds == -1 ? m_stopTimeout : milliseconds);
        m_thread.Join();
    }
    if (m_flushMessages)
        DeliverMainThreadMessages();
    if (IOQMainThreadMessages* messages = LoadedMessages())
        messages->Forget(this);
    const std::lock_guard guard(m_lock);
    m_current.reset();
    return state && state != m_abandoned ? state->result.load() : 0;
}

// Looks again and again, as the messages that it delivers may be what the thread waits for.
void OQThread::WaitForEnd(const std::shared_ptr<RunState>& state, int32_t timeout)
{
    OQTimer timer;
    while (state->running) {
        const double elapsed = timer.GetElapsedMs(false);
        if (timeout >= 0 && elapsed > timeout && MayHardKill()) {
            OQLog(OQLogError, u"OQThread::Stop",
                u"Hard killing thread (handle=%x), it exceeded timeout=%d MS",
                { state->threadId.load(), timeout });
            GiveUp(state);
            return;
        }
        const int32_t id = state->threadId;
        if (elapsed > handleTestAfterMs && id != 0) {
            if (const int error = pxvis::os::ThreadError(id)) {
                OQLog(OQLogError, u"OQThread::Stop", u"GetThreadPriority returned error, errno=%d",
                    { error });
                state->inside = false;
                GiveUp(state);
                return;
            }
        }
        if (IOQMessageQueues* queues = m_pumpWhileStopping ? IOQMessageQueues::Get() : nullptr)
            queues->Pump();
        state->ended.Wait(std::max(m_stopPoll, 1));
    }
}

// The requests to stop that are behind it have reached the thread wherever it waits; more can't be
// done for it.
void OQThread::GiveUp(const std::shared_ptr<RunState>& state)
{
    if (!state->running.exchange(false))
        return; // it has just ended
    state->ended.Set();
    m_thread.Detach();
    const std::lock_guard guard(m_lock);
    m_abandoned = state;
}

void OQThread::Finish()
{
    Stop(-1);
    const std::shared_ptr<RunState> abandoned = [this] {
        const std::lock_guard guard(m_lock);
        return m_abandoned;
    }();
    if (abandoned)
        abandoned->inside.wait(true);
    // What it posted meanwhile, or somebody who never started it.
    if (IOQMainThreadMessages* messages = LoadedMessages())
        messages->Forget(this);
}

bool OQThread::HasAbandonedRun() const
{
    const std::lock_guard guard(m_lock);
    return m_abandoned && m_abandoned->inside;
}

void OQThread::Discard(std::unique_ptr<OQThread> thread)
{
    static std::mutex lock;
    static auto* const kept = new std::vector<std::unique_ptr<OQThread>>; // until the process ends
    std::vector<std::unique_ptr<OQThread>> done;
    if (thread)
        thread->Stop(-1);
    const std::lock_guard guard(lock);
    if (thread && thread->HasAbandonedRun())
        kept->push_back(std::move(thread));
    const auto left = std::partition(kept->begin(), kept->end(),
        [](const std::unique_ptr<OQThread>& one) { return one->HasAbandonedRun(); });
    std::move(left, kept->end(), std::back_inserter(done));
    kept->erase(left, kept->end());
}

void OQThread::Cancel(bool cancel)
{
    const std::lock_guard guard(m_lock);
    m_cancelled = cancel;
    if (!m_current)
        return;
    if (cancel)
        m_current->cancel.Set();
    else
        m_current->cancel.Reset();
}

bool OQThread::SetPriority(int32_t priority)
{
    if (!IsRunning())
        return false;
    const int32_t id = GetThreadId();
    return id != 0 && pxvis::os::SetThreadPriority(id, priority);
}

std::shared_ptr<OQThread::RunState> OQThread::GetCurrent() const
{
    const std::lock_guard guard(m_lock);
    return m_current;
}

// A run that was abandoned still finds its own.
std::shared_ptr<OQThread::RunState> OQThread::GetState() const
{
    const std::lock_guard guard(m_lock);
    return m_current ? m_current : m_abandoned;
}

bool OQThread::IsRunning() const
{
    const std::lock_guard guard(m_lock);
    return m_current && m_current->running;
}

void OQThread::Join()
{
    if (const auto state = GetState())
        state->ended.Wait(-1);
}

OQWaitResult OQThread::WaitAny(int32_t milliseconds, OQWaitHandle handle)
{
    const auto state = GetState();
    return state ? state->Wait(milliseconds, handle) : OQWaitThreadEnded;
}

OQWaitResult OQThread::Wait(int32_t milliseconds, OQEvent* event)
{
    const auto state = GetState();
    return state ? state->Wait(milliseconds, event ? &event->Native() : nullptr)
                 : OQWaitThreadEnded;
}

OQWaitResult OQThread::WaitAndPump(int32_t milliseconds, OQEvent* event)
{
    IOQMessageQueues* queues = IOQMessageQueues::Get();
    const auto state = GetState();
    if (!queues || !state)
        return Wait(milliseconds, event);
    const int due = queues->GetDescriptor();
    OQTimer timer;
    for (int32_t left = std::max(milliseconds, -1);;) {
        const pxvis::os::WaitItem items[]
            = { &state->cancel, &state->ended, event ? &event->Native() : nullptr, due };
        const bool looks = due < 0 && (left < 0 || left > messagePollMs);
        const int index = pxvis::os::WaitAny(items, looks ? messagePollMs : left);
        if (index >= 0 && index <= OQWaitEvent)
            return static_cast<OQWaitResult>(index);
        if (index == pxvis::os::WaitFailed)
            return OQWaitFailed;
        if (index == pxvis::os::WaitTimeout && due >= 0)
            return OQWaitTimeout;
        queues->Pump();
        if (milliseconds < 0)
            continue;
        left = milliseconds - static_cast<int32_t>(std::lround(timer.GetElapsedMs(false)));
        if (left < 1)
            return OQWaitTimeout;
    }
}

uint8_t OQThread::GetResult() const
{
    const std::lock_guard guard(m_lock);
    return m_current ? m_current->result.load() : 0;
}

OQWaitHandle OQThread::GetHandle() const
{
    const std::lock_guard guard(m_lock);
    return m_current && m_current->running ? m_current->ended.GetDescriptor() : -1;
}

int32_t OQThread::GetThreadId() const
{
    const auto state = GetCurrent();
    if (!state)
        return 0;
    state->threadId.wait(0); // it is on its way
    return state->threadId;
}

OQWaitHandle OQThread::GetCancelEvent() const
{
    const auto state = GetState();
    return state ? state->cancel.GetDescriptor() : -1;
}

void OQThread::DeliverMainThreadMessages()
{
    if (IOQMainThreadMessages* messages = LoadedMessages())
        messages->Deliver(this);
}

bool OQThread::PostMainThreadMessage()
{
    IOQTools* tools = OQSiblingModules::Get().Tools();
    IOQMainThreadMessages* messages = tools ? tools->GetMainThreadMessages(1) : nullptr;
    return messages && messages->Post(this);
}
