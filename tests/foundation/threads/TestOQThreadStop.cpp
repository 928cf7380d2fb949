#include "foundation/OQThread.h"
#include "foundation/OQTimer.h"

#include <doctest/doctest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <sys/resource.h>
#include <thread>

namespace {

// Doesn't look whether it is asked to stop.
class Deaf final : public OQThread
{
public:
    struct Outside
    {
        OQEvent entered { true };
        OQEvent mayLeave { true };
        OQEvent destroyed { true };
        std::atomic<bool> mayBeKilled = true;
        std::atomic<int32_t> waitAfterwards = OQWaitFailed;
    };

    explicit Deaf(std::shared_ptr<Outside> outside)
        : m_outside(std::move(outside))
    {
    }

    ~Deaf() override
    {
        Finish();
        m_outside->destroyed.Set();
    }

private:
    bool MayHardKill() override { return m_outside->mayBeKilled; }

    uint8_t Run() override
    {
        m_outside->entered.Set();
        m_outside->mayLeave.Wait(-1);
        m_outside->waitAfterwards = OQThread::Wait(-1);
        m_outside->waitAfterwards = IsCancelled() ? m_outside->waitAfterwards.load() : -1;
        return 9;
    }

    const std::shared_ptr<Outside> m_outside;
};

class Default final : public OQThread
{
public:
    ~Default() override { Finish(); }
};

}

TEST_CASE("A thread that doesn't stop in time is abandoned and keeps its object until it is done")
{
    const auto outside = std::make_shared<Deaf::Outside>();
    Deaf thread(outside);
    REQUIRE(thread.Start());
    REQUIRE(outside->entered.Wait(-1));
    thread.SetStopTimeout(30);
    OQTimer timer;
    CHECK(thread.Stop() == 0);
    CHECK(timer.GetElapsedMs(false) >= 30);
    CHECK_FALSE(thread.IsRunning());
    CHECK(thread.GetThreadId() == 0);
    CHECK(thread.HasAbandonedRun());
    CHECK_FALSE(thread.Start());
    CHECK(thread.GetStartCount() == 1);
    thread.Join(); // nobody waits for it any more

    outside->mayLeave.Set();
    while (thread.HasAbandonedRun())
        std::this_thread::yield();
    CHECK(outside->waitAfterwards == OQWaitCancelled);
    CHECK(thread.GetResult() == 0);
    outside->entered.Reset();
    CHECK(thread.Start());
    CHECK(thread.Stop(-2) == 9); // for ever, whatever is set
}

TEST_CASE("A thread that must not be given up is waited for past the time")
{
    const auto outside = std::make_shared<Deaf::Outside>();
    outside->mayBeKilled = false;
    Deaf thread(outside);
    REQUIRE(thread.Start());
    const std::jthread helper([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
        outside->mayLeave.Set();
    });
    CHECK(thread.Stop(1) == 9);
    CHECK_FALSE(thread.HasAbandonedRun());
}

TEST_CASE("An object that is discarded is destroyed when no run is in it any more")
{
    const auto outside = std::make_shared<Deaf::Outside>();
    auto thread = std::make_unique<Deaf>(outside);
    thread->SetStopTimeout(0);
    REQUIRE(thread->Start());
    REQUIRE(outside->entered.Wait(-1));
    OQThread::Discard(std::move(thread));
    CHECK_FALSE(outside->destroyed.Wait(0));
    OQThread::Discard(nullptr);
    CHECK_FALSE(outside->destroyed.Wait(0));
    outside->mayLeave.Set();
    while (!outside->destroyed.Wait(1))
        OQThread::Discard(std::make_unique<Default>());
}

TEST_CASE("A destructor waits for a run that was given up")
{
    const auto outside = std::make_shared<Deaf::Outside>();
    auto thread = std::make_unique<Deaf>(outside);
    thread->SetStopTimeout(0);
    REQUIRE(thread->Start());
    const std::jthread helper([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        CHECK_FALSE(outside->destroyed.Wait(0));
        outside->mayLeave.Set();
    });
    thread.reset();
    CHECK(outside->destroyed.Wait(0));
}

TEST_CASE("A thread ends its waits when it is asked to stop, and stops at once")
{
    Default thread;
    CHECK(thread.Wait(-1) == OQWaitThreadEnded);
    CHECK(thread.GetCancelEvent() == -1);
    REQUIRE(thread.Start(-2));
    CHECK(thread.WaitAny(5) == OQWaitTimeout);
    CHECK(thread.WaitAndPump(5) == OQWaitTimeout);
    OQEvent event(false);
    event.Set();
    CHECK(thread.WaitAny(-1, event.GetHandle()) == OQWaitEvent);
    CHECK(thread.Wait(-1, &event) == OQWaitEvent);
    CHECK(thread.Wait(1, &event) == OQWaitTimeout);
    CHECK(thread.SetPriority(-15));
    thread.Cancel(true);
    CHECK(thread.Wait(-1) == OQWaitCancelled);
    thread.Join();
    thread.Cancel(false);
    CHECK(thread.Wait(-1) == OQWaitThreadEnded);
    CHECK_FALSE(thread.SetPriority(0));

    thread.SetStopPoll(10000);
    REQUIRE(thread.Start());
    OQTimer timer;
    CHECK(thread.Stop() == 1);
    CHECK(timer.GetElapsedMs(false) < 5000);
}

TEST_CASE("A thread that the system has no descriptors for doesn't start, and may do so later")
{
    Default thread;
    rlimit before {};
    getrlimit(RLIMIT_NOFILE, &before);
    rlimit none = before;
    none.rlim_cur = 0;
    setrlimit(RLIMIT_NOFILE, &none);
    CHECK_FALSE(thread.Start());
    setrlimit(RLIMIT_NOFILE, &before);
    CHECK_FALSE(thread.IsRunning());
    CHECK(thread.GetStartCount() == 0);
    CHECK(thread.Start());
    CHECK(thread.Stop() == 1);
}

TEST_CASE("Others may look, wait and cancel while a thread is started and stopped")
{
    Default thread;
    std::atomic<bool> done = false;
    std::jthread waiting([&] {
        while (!done) {
            thread.Wait(1);
            thread.Join();
        }
    });
    std::jthread looking([&] {
        while (!done) {
            thread.Cancel(true);
            thread.SetPriority(-1);
            CHECK(thread.GetResult() <= 1);
            CHECK(thread.GetThreadId() >= 0);
        }
    });
    for (int i = 0; i < 200; ++i) {
        CHECK(thread.Start(0, i % 2 == 0));
        CHECK(thread.Stop() == 1);
    }
    done = true;
}
