#include "foundation/IOQTools.h"
#include "foundation/IOQWindowServices.h"
#include "foundation/OQMainThreadWindow.h"
#include "foundation/OQThread.h"
#include "platform/PollMessageQueues.h"

#include <doctest/doctest.h>

#include <chrono>
#include <thread>

namespace {

// Posts as often as it is told.
class Posting final : public OQThread
{
public:
    ~Posting() override { Finish(); }

    int posts = 3;
    int handled = 0; // on the main thread

private:
    uint8_t Run() override
    {
        for (int i = 0; i < posts; ++i)
            CHECK(PostMainThreadMessage());
        return 1;
    }

    void HandleMainThreadMessage() override { ++handled; }
};

// Posts after it was given up, when its destructor waits for it; handling it throws.
class Late final : public OQThread
{
public:
    ~Late() override
    {
        SetStopTimeout(0);
        SetFlushMessages(false);
        Stop();
        CHECK(HasAbandonedRun());
        mayLeave.Set();
        Finish();
        pxvis::PollMessageQueues::Get().Pump();
        CHECK(handled == 0);
    }

    OQEvent mayLeave { true };
    int handled = 0;

private:
    uint8_t Run() override
    {
        mayLeave.Wait(-1);
        std::this_thread::sleep_for(std::chrono::milliseconds(5)); // until it is waited for
        CHECK(PostMainThreadMessage());
        return 1;
    }

    void HandleMainThreadMessage() override
    {
        ++handled;
        throw handled;
    }
};

// The tools, started by this thread with a window for its messages.
struct MainThread
{
    explicit MainThread(IOQMessageQueues& queues)
    {
        IOQMessageQueues::Install(&queues);
        window = std::make_unique<OQMainThreadWindow>();
        setup.mainThread = window.get();
        REQUIRE(tools.Tools());
    }

    ~MainThread()
    {
        OQSiblingModules::Get().Unload(); // which the threads have loaded
        IOQMessageQueues::Install(nullptr);
    }

    std::unique_ptr<OQMainThreadWindow> window;
    OQToolsSetup setup;
    OQSiblingModules tools { {},
        { .name = PXVIS_BINARY_DIR "/bin/OQTools.so", .parameter = &setup } };
};

}

TEST_CASE("What a thread posts is handled when the main thread pumps, or by Stop at the latest")
{
    pxvis::PollMessageQueues& queues = pxvis::PollMessageQueues::Get();
    const MainThread main(queues);
    Posting thread;
    REQUIRE(thread.Start());
    while (thread.handled < thread.posts)
        CHECK(queues.WaitAndPump(-1));
    REQUIRE(thread.Start(0, true));
    CHECK(thread.handled <= 2 * thread.posts);
    thread.Join();
    thread.Stop();
    CHECK(thread.handled == 2 * thread.posts);
    queues.Pump();
    CHECK(thread.handled == 2 * thread.posts);
}

TEST_CASE("A thread that doesn't flush drops what it posted when it stops")
{
    pxvis::PollMessageQueues& queues = pxvis::PollMessageQueues::Get();
    const MainThread main(queues);
    Posting thread;
    thread.SetFlushMessages(false);
    REQUIRE(thread.Start());
    thread.Join();
    thread.Stop();
    queues.Pump();
    CHECK(thread.handled == 0);

    thread.posts = 100;
    thread.SetFlushMessages(true);
    REQUIRE(thread.Start());
    while (thread.WaitAndPump(-1) != OQWaitThreadEnded) { }
    queues.Pump();
    CHECK(thread.handled == 100);
}

TEST_CASE("What a thread posts after it was given up reaches no object that is being destroyed")
{
    const MainThread main(pxvis::PollMessageQueues::Get());
    Late thread;
    REQUIRE(thread.Start());
    thread.OnMainThreadMessage(); // as the tools call it: nothing is thrown
    CHECK(thread.handled == 1);
    thread.handled = 0;
}
