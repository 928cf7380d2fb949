#include "SlotOf.h"
#include "foundation/OQCmdTarget.h"
#include "platform/PollMessageQueues.h"

#include <doctest/doctest.h>

#include <functional>
#include <thread>
#include <vector>

using pxvis::PollMessageQueues;

namespace {

struct InstalledQueues
{
    InstalledQueues() { IOQMessageQueues::Install(&PollMessageQueues::Get()); }

    ~InstalledQueues() { IOQMessageQueues::Install(nullptr); }
};

class Target final : public OQCmdTarget
{
public:
    std::vector<int64_t> commands;
    std::vector<int64_t> timers;
    std::function<void(const OQCmd&)> onCmd;

private:
    void OnCmd(const OQCmd& cmd) override
    {
        commands.push_back(cmd.command * 1000 + cmd.p1 * 100 + cmd.p2 * 10 + cmd.p3);
        const auto call = onCmd; // which may delete the target
        if (call)
            call(cmd);
    }

    void OnTimer(int64_t id) override { timers.push_back(id); }
};

class Filter final : public IPumpFilter
{
public:
    Filter(int32_t wanted, bool anyThread)
        : m_wanted(wanted)
        , m_anyThread(anyThread)
    {
    }

    bool IsWanted(const OQCmd& cmd) const override { return cmd.command == m_wanted; }

    bool MayRunOnAnyThread(const OQCmd&) const override { return m_anyThread; }

private:
    int32_t m_wanted;
    bool m_anyThread;
};

template <class Work>
void OnOtherThread(Work work)
{
    std::thread(work).join();
}

}

TEST_CASE("A target without a queue takes nothing")
{
    Target target;
    CHECK_FALSE(target.IsValid());
    CHECK_FALSE(target.PostCmd(5));
    CHECK_FALSE(target.SetTimer(1, 1));
    CHECK_FALSE(target.KillTimer(1));
    target.Pump();
    target.SendCmd(7, 1, 2, 3);
    CHECK(target.commands == std::vector<int64_t> { 7123 });
}

TEST_CASE("Posted commands run on the target's thread, sent ones at once")
{
    const InstalledQueues queues;
    Target target;
    CHECK(target.PostCmd(1, 2, 3, 4)); // a number like any other
    CHECK(target.PostCmd(OQCmd { 5, 0, 0, 1 }));
    target.SendCmd(OQCmd { 9 });
    CHECK(target.commands == std::vector<int64_t> { 9000 });
    target.onCmd = [&](const OQCmd& cmd) {
        if (cmd.command == 1)
            target.PostCmd(6);
    };
    CHECK(PollMessageQueues::Get().WaitAndPump(-1));
    CHECK(target.commands == std::vector<int64_t> { 9000, 1234, 5001, 6000 });

    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 500; ++i)
                CHECK(target.PostCmd(2));
        });
    }
    while (target.commands.size() < 2004)
        PollMessageQueues::Get().WaitAndPump(-1);
}

TEST_CASE("A pump takes what its filter wants, on another thread only what may run there")
{
    const InstalledQueues queues;
    Target target;
    for (const int32_t command : { 3, 4, 3, 5 })
        target.PostCmd(command);
    OnOtherThread([&] {
        target.Pump();
        const Filter own(3, false);
        target.Pump(&own);
    });
    CHECK(target.commands.empty());
    const Filter any(5, true);
    OnOtherThread([&] { target.Pump(&any); });
    CHECK(target.commands == std::vector<int64_t> { 5000 });
    const Filter own(3, false);
    target.Pump(&own);
    CHECK(target.commands == std::vector<int64_t> { 5000, 3000, 3000 });
    target.Pump();
    CHECK(target.commands.back() == 4000);
}

TEST_CASE("A timer of another thread's takes effect when the target's thread pumps")
{
    const InstalledQueues queues;
    PollMessageQueues& loop = PollMessageQueues::Get();
    Target target;
    OnOtherThread([&] {
        CHECK(target.SetTimer(8, 0));
        const Filter any(1, true);
        target.Pump(&any);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    CHECK(target.timers.empty());
    CHECK(loop.Pump());
    CHECK(target.timers.empty()); // it begins only now
    while (target.timers.empty())
        loop.WaitAndPump(-1);
    CHECK(target.timers[0] == 8);
    CHECK(target.commands.empty());

    OnOtherThread([&] {
        target.SetTimer(8, 1);
        target.SetTimer(9, 1);
        target.KillTimer(8);
    });
    CHECK(target.KillTimer(9)); // what was asked for before comes before
    CHECK_FALSE(target.KillTimer(8));
    target.timers.clear();
    loop.WaitAndPump(10);
    loop.WaitAndPump(10);
    CHECK(target.timers.empty());
    CHECK(target.SetTimer(1, -5));
    CHECK(target.KillTimer(1));
}

TEST_CASE("A target may be deleted by its own command, and what watches it learns of it")
{
    const InstalledQueues queues;
    auto target = std::make_unique<Target>();
    OQDeleteProbe outer(target->GetProbeHost());
    {
        const OQDeleteProbe gone(target->GetProbeHost());
        CHECK_FALSE(gone.IsDeleted());
    }
    for (int i = 0; i < 3; ++i)
        target->PostCmd(1);
    int calls = 0;
    target->onCmd = [&](const OQCmd&) {
        ++calls;
        target.reset();
    };
    CHECK(PollMessageQueues::Get().Pump());
    CHECK(calls == 1);
    CHECK(outer.IsDeleted());
    CHECK_FALSE(PollMessageQueues::Get().Pump());
    const OQDeleteProbe none(nullptr);
    CHECK_FALSE(none.IsDeleted());
}

TEST_CASE("A target takes only so many commands")
{
    const InstalledQueues queues;
    Target target;
    size_t taken = 0;
    while (taken <= OQCmdTarget::mostPending && target.PostCmd(1))
        ++taken;
    CHECK(taken == PollMessageQueues::mostMessages);
    target.Pump();
    CHECK(target.commands.size() == taken);
}

TEST_CASE("The operations of a command target keep their places")
{
    using Post = bool (IOQCmdTarget::*)(const OQCmd&);
    using Send = void (IOQCmdTarget::*)(const OQCmd&);
    CHECK(SlotOf(&IOQCmdTarget::IsValid) == 0);
    CHECK(SlotOf(static_cast<Post>(&IOQCmdTarget::PostCmd)) == 2);
    CHECK(SlotOf(static_cast<Send>(&IOQCmdTarget::SendCmd)) == 4);
    CHECK(SlotOf(&IOQCmdTarget::Pump) == 5);
    CHECK(SlotOf(&IOQCmdTarget::SetTimer) == 6);
    CHECK(SlotOf(&IOQCmdTarget::KillTimer) == 7);
}
