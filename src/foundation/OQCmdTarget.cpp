#include "foundation/OQCmdTarget.h"

#include "foundation/IOQMessageQueue.h"
#include "os/Thread.h"

#include <algorithm>

namespace {

constexpr uint32_t pumpMessage = 0x87D0;

enum TimerCmd : int32_t
{
    SetTimerCmd = 1,
    KillTimerCmd = 2,
};

class TimerCmdsOnly final : public IPumpFilter
{
public:
    bool IsWanted(const OQCmd& cmd) const override { return cmd.isTimer; }

    bool MayRunOnAnyThread(const OQCmd&) const override { return false; }
};

}

class OQCmdTarget::HiddenWindow final : public IOQMessageWindowEvents
{
public:
    explicit HiddenWindow(OQCmdTarget& target)
        : m_target(target)
    {
        if (IOQMessageQueues* queues = IOQMessageQueues::Get())
            window = queues->MakeWindow(*this);
    }

    // Both may delete the target, and this window with it.
    void OnMessage(uint32_t message) override
    {
        if (message == pumpMessage)
            m_target.Pump(nullptr);
    }

    void OnTimer(intptr_t id) override { m_target.OnTimer(id); }

    std::unique_ptr<IOQMessageWindow> window;

private:
    OQCmdTarget& m_target;
};

OQCmdTarget::OQCmdTarget()
    : m_ownThread(pxvis::os::CurrentThreadId())
    , m_window(std::make_unique<HiddenWindow>(*this))
{
}

OQCmdTarget::~OQCmdTarget() = default;

bool OQCmdTarget::IsValid() const
{
    return m_window->window != nullptr;
}

bool OQCmdTarget::PostCmd(int32_t command, int64_t p1, int64_t p2, int64_t p3)
{
    return PostCmd(OQCmd { command, p1, p2, p3 });
}

bool OQCmdTarget::PostCmd(const OQCmd& cmd)
{
    if (!IsValid())
        return false;
    const std::lock_guard guard(m_lock);
    if (m_pending.size() >= mostPending)
        return false;
    m_pending.push_back(cmd);
    if (m_window->window->Post(pumpMessage))
        return true;
    m_pending.pop_back();
    return false;
}

void OQCmdTarget::SendCmd(int32_t command, int64_t p1, int64_t p2, int64_t p3)
{
    SendCmd(OQCmd { command, p1, p2, p3 });
}

void OQCmdTarget::SendCmd(const OQCmd& cmd)
{
    OnCmd(cmd);
}

void OQCmdTarget::Pump(const IPumpFilter* filter)
{
    if (!IsValid())
        return;
    const bool isOwn = IsOwnThread();
    std::unique_lock guard(m_lock);
    for (size_t i = 0; i < m_pending.size();) {
        const OQCmd cmd = m_pending[i];
        const bool mayRun = isOwn || (!cmd.isTimer && filter && filter->MayRunOnAnyThread(cmd));
        if (!mayRun || (filter && !filter->IsWanted(cmd))) {
            ++i;
            continue;
        }
        m_pending.erase(m_pending.begin() + static_cast<ptrdiff_t>(i));
        guard.unlock();
        if (cmd.isTimer) {
            RunTimerCmd(cmd);
        } else {
            const OQDeleteProbe probe(&m_probes);
            OnCmd(cmd);
            if (probe.IsDeleted())
                return; // the lock has gone, too
        }
        guard.lock();
    }
}

bool OQCmdTarget::SetTimer(int64_t id, int32_t milliseconds)
{
    milliseconds = std::max(milliseconds, 1);
    if (!IsOwnThread())
        return PostCmd(OQCmd { SetTimerCmd, id, milliseconds, 0, true });
    return PumpTimerCmds() && m_window->window->SetTimer(id, milliseconds);
}

bool OQCmdTarget::KillTimer(int64_t id)
{
    if (!IsOwnThread())
        return PostCmd(OQCmd { KillTimerCmd, id, 0, 0, true });
    return PumpTimerCmds() && m_window->window->KillTimer(id);
}

bool OQCmdTarget::IsOwnThread() const
{
    return pxvis::os::CurrentThreadId() == m_ownThread;
}

// What other threads asked for before comes before.
bool OQCmdTarget::PumpTimerCmds()
{
    static const TimerCmdsOnly filter;
    OQCmdTarget::Pump(&filter);
    return IsValid();
}

void OQCmdTarget::RunTimerCmd(const OQCmd& cmd)
{
    if (cmd.command == SetTimerCmd)
        m_window->window->SetTimer(cmd.p1, static_cast<int32_t>(std::max<int64_t>(cmd.p2, 1)));
    else if (cmd.command == KillTimerCmd)
        m_window->window->KillTimer(cmd.p1);
}
