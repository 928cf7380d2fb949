#pragma once

#include "foundation/IOQCmdTarget.h"
#include "foundation/OQDeleteProbe.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>

// Carries work to the thread that makes the target, through that thread's message queue. Made and
// destroyed on that thread, while nobody else uses it any more; what is pending then is dropped. It
// may be deleted inside of its own OnCmd and OnTimer.
class OQCmdTarget : public IOQCmdTarget
{
public:
    static constexpr size_t mostPending = 65536; // PostCmd refuses more

    OQCmdTarget();
    OQCmdTarget(const OQCmdTarget&) = delete;
    OQCmdTarget& operator=(const OQCmdTarget&) = delete;

    bool IsValid() const override;
    bool PostCmd(int32_t command, int64_t p1 = 0, int64_t p2 = 0, int64_t p3 = 0) override;
    bool PostCmd(const OQCmd& cmd) override;
    void SendCmd(int32_t command, int64_t p1 = 0, int64_t p2 = 0, int64_t p3 = 0) override;
    void SendCmd(const OQCmd& cmd) override;
    void Pump(const IPumpFilter* filter = nullptr) override;
    bool SetTimer(int64_t id, int32_t milliseconds) override;
    bool KillTimer(int64_t id) override;

    virtual ~OQCmdTarget();

    OQDeleteProbeHost* GetProbeHost() { return &m_probes; }

protected:
    virtual void OnCmd(const OQCmd&) { }

    virtual void OnTimer(int64_t) { }

private:
    class HiddenWindow;

    bool IsOwnThread() const;
    bool PumpTimerCmds();
    void RunTimerCmd(const OQCmd& cmd);

    OQDeleteProbeHost m_probes;
    std::mutex m_lock; // of what is pending
    const int32_t m_ownThread;
    std::deque<OQCmd> m_pending;
    std::unique_ptr<HiddenWindow> m_window;
};
