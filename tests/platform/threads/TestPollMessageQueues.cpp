#include "foundation/OQThread.h"
#include "platform/PollMessageQueues.h"

#include <doctest/doctest.h>

#include <chrono>
#include <functional>
#include <poll.h>
#include <thread>
#include <vector>

using pxvis::PollMessageQueues;

namespace {

class Window final : public IOQMessageWindowEvents
{
public:
    void OnMessage(uint32_t message) override
    {
        messages.push_back(message);
        const auto call = onMessage; // which may delete the window
        if (call)
            call();
    }

    void OnTimer(intptr_t id) override
    {
        timers.push_back(id);
        const auto call = onTimer; // which may delete the window
        if (call)
            call();
    }

    std::vector<uint32_t> messages;
    std::vector<intptr_t> timers;
    std::function<void()> onMessage;
    std::function<void()> onTimer;
    std::unique_ptr<IOQMessageWindow> window = PollMessageQueues::Get().MakeWindow(*this);
};

bool IsDue()
{
    pollfd polled { PollMessageQueues::Get().GetDescriptor(), POLLIN, 0 };
    return poll(&polled, 1, 0) == 1;
}

}

TEST_CASE("Posts from many threads arrive, those of each in their order")
{
    constexpr uint32_t threads = 4;
    constexpr uint32_t posts = 2000;
    PollMessageQueues& queues = PollMessageQueues::Get();
    Window window;
    {
        std::vector<std::jthread> running;
        for (uint32_t t = 0; t < threads; ++t) {
            running.emplace_back([&, t] {
                for (uint32_t i = 0; i < posts; ++i)
                    CHECK(window.window->Post(t << 16 | i));
            });
        }
        while (window.messages.size() < threads * posts)
            CHECK(queues.WaitAndPump(-1));
    }
    uint32_t next[threads] = {};
    for (const uint32_t message : window.messages)
        CHECK((message & 0xFFFF) == next[message >> 16]++);
    CHECK_FALSE(IsDue());
    CHECK_FALSE(queues.Pump());
}

TEST_CASE("A full queue refuses messages and goes on when there is room")
{
    Window window;
    for (size_t i = 0; i < PollMessageQueues::mostMessages; ++i)
        REQUIRE(window.window->Post(1));
    CHECK_FALSE(window.window->Post(2));
    CHECK(PollMessageQueues::Get().Pump());
    CHECK(window.messages.size() == PollMessageQueues::mostMessages);
    CHECK(window.window->Post(3));
    CHECK(IsDue());
}

TEST_CASE("What a message brings about comes with the next pump, and a loop in a loop is served")
{
    PollMessageQueues& queues = PollMessageQueues::Get();
    Window window;
    window.onMessage = [&] { window.window->Post(1); };
    window.window->Post(0);
    CHECK(queues.Pump());
    CHECK(window.messages.size() == 1);
    CHECK(IsDue());
    window.onMessage = [&] {
        window.onMessage = nullptr;
        CHECK(queues.Pump());
    };
    window.window->Post(2);
    CHECK(queues.Pump());
    CHECK(window.messages == std::vector<uint32_t> { 0, 1, 2 });
    CHECK_FALSE(IsDue());
}

TEST_CASE("A window that goes takes its messages and timers along, even while it is called")
{
    PollMessageQueues& queues = PollMessageQueues::Get();
    Window other;
    auto window = std::make_unique<Window>();
    window->onMessage = [&] { window.reset(); };
    for (int i = 0; i < 3; ++i)
        window->window->Post(1);
    window->window->SetTimer(7, 1);
    other.window->Post(5);
    CHECK(queues.Pump());
    CHECK_FALSE(window);
    CHECK(other.messages.size() == 1);
    CHECK_FALSE(IsDue());

    // Messages that go don't make room for later ones in the same round.
    window = std::make_unique<Window>();
    other.onMessage = [&] {
        window.reset();
        other.window->Post(6);
    };
    other.window->Post(5);
    window->window->Post(1);
    CHECK(queues.Pump());
    CHECK(other.messages.size() == 2);
    other.onMessage = nullptr;
    CHECK(queues.Pump());

    window = std::make_unique<Window>();
    window->window->SetTimer(1, 1);
    window->onTimer = [&] { window.reset(); };
    CHECK(queues.WaitAndPump(-1));
    CHECK_FALSE(window);
    CHECK_FALSE(queues.WaitAndPump(3));
}

TEST_CASE("Timers go on until they are killed, and a late one fires once")
{
    PollMessageQueues& queues = PollMessageQueues::Get();
    Window window;
    CHECK(window.window->SetTimer(-3, 0)); // 1 ms
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    CHECK(IsDue());
    CHECK(queues.Pump());
    CHECK(window.timers == std::vector<intptr_t> { -3 });
    CHECK(queues.WaitAndPump(-1));
    CHECK(window.timers.size() == 2);
    CHECK(window.window->SetTimer(-3, 100000)); // starts anew
    CHECK_FALSE(queues.WaitAndPump(5));
    CHECK(window.window->KillTimer(-3));
    CHECK_FALSE(window.window->KillTimer(-3));

    CHECK(window.window->SetTimer(1, 1));
    CHECK(window.window->SetTimer(2, 1));
    window.onTimer = [&] { window.window->KillTimer(window.timers.back() == 1 ? 2 : 1); };
    std::this_thread::sleep_for(std::chrono::milliseconds(3));
    queues.Pump();
    CHECK(window.timers.size() == 3); // the other one was killed in time
}

TEST_CASE("Each thread pumps its own queue, and a wait of a thread serves it")
{
    class Waiting final : public OQThread
    {
    public:
        ~Waiting() override { Finish(); }

        Window* window = nullptr;
        OQEvent ready { true };
        size_t served = 0;
        OQWaitResult result = OQWaitFailed;

    private:
        uint8_t Run() override
        {
            Window mine;
            window = &mine;
            mine.onMessage = [&] { served = mine.messages.size(); };
            ready.Set();
            result = WaitAndPump(-1);
            return 1;
        }
    };

    IOQMessageQueues::Install(&PollMessageQueues::Get());
    Waiting thread;
    REQUIRE(thread.Start());
    REQUIRE(thread.ready.Wait(-1));
    CHECK(thread.window->window->Post(1));
    CHECK_FALSE(PollMessageQueues::Get().Pump());
    Window window;
    window.window->SetTimer(1, 1);
    CHECK(thread.WaitAndPump(20) == OQWaitTimeout);
    CHECK_FALSE(window.timers.empty());

    // What the thread's end needs may lie on the queue of who stops it.
    window.onTimer = [&] { thread.Cancel(true); };
    thread.SetPumpWhileStopping(true);
    CHECK(thread.Stop() == 1);
    CHECK(thread.result == OQWaitCancelled);
    CHECK(thread.served == 1);
    IOQMessageQueues::Install(nullptr);
}
