#include "WindowTesting.h"

#include "toolkit/OQQtMessageQueues.h"
#include "toolkit/OQQtWindowServices.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>

#include <thread>

namespace {

class FakeQueues final : public IOQMessageQueues
{
public:
    int made = 0;
    int pumped = 0;

    std::unique_ptr<IOQMessageWindow> MakeWindow(IOQMessageWindowEvents&) override
    {
        ++made;
        return nullptr;
    }

    bool Pump() override
    {
        ++pumped;
        return false;
    }
};

struct Listener final : IOQMessageWindowEvents
{
    std::vector<int64_t> told;
    std::unique_ptr<IOQMessageWindow> window;
    bool endsItself = false;

    void OnMessage(uint32_t message) override { Tell(message); }

    void OnTimer(intptr_t id) override { Tell(-id); }

    void Tell(int64_t what)
    {
        told.push_back(what);
        if (endsItself)
            window.reset();
    }
};

}

TEST_CASE(
    "messages and timers come by Qt's queue where there is one, and by the fallback's elsewhere")
{
    InProcessOfItsOwn([] {
        FakeQueues fallback;
        OQQtMessageQueues queues(fallback);
        IOQMessageQueues::Install(&queues);
        Listener listener;
        CHECK_FALSE(queues.MakeWindow(listener));
        CHECK(fallback.made == 1);
        CHECK_FALSE(OQToolkit::Get().ProcessEvents(0)); // no windows, but the queue is pumped
        CHECK(fallback.pumped == 1);

        XvfbDisplay display;
        REQUIRE(OQToolkit::Get().EnsureApplication());
        PumpFor(20);
        listener.window = queues.MakeWindow(listener);
        REQUIRE(listener.window);
        CHECK(fallback.made == 1);
        std::thread([&] {
            for (uint32_t i = 1; i <= 3; ++i)
                CHECK(listener.window->Post(i));
            CHECK_FALSE(queues.MakeWindow(listener)); // no queue of Qt's here
        }).join();
        CHECK(listener.told.empty());
        CHECK(queues.Pump());
        CHECK(listener.told == std::vector<int64_t> { 1, 2, 3 });
        CHECK(listener.window->SetTimer(7, 0));
        CHECK(listener.window->SetTimer(7, 5)); // one timer
        CHECK(PumpUntil([&] { return listener.told.size() == 5; }));
        CHECK(listener.told.back() == -7);
        CHECK(listener.window->KillTimer(7));
        CHECK_FALSE(listener.window->KillTimer(7));

        int accepted = 0;
        while (accepted < 100000 && listener.window->Post(9))
            ++accepted;
        CHECK(accepted == 10000);
        OQQtWindowServices().PumpMessages();
        CHECK(listener.window->Post(9));
        listener.window->Post(9);
        listener.window->SetTimer(1, 1);
        listener.told.clear();
        listener.endsItself = true;
        PumpFor(50);
        CHECK(listener.told.size() == 1);
        IOQMessageQueues::Install(nullptr);
    });
}

TEST_CASE("a thread of Qt's has a queue of its own")
{
    InProcessOfItsOwn([] {
        XvfbDisplay display;
        REQUIRE(OQToolkit::Get().EnsureApplication());
        FakeQueues fallback;
        OQQtMessageQueues queues(fallback);
        struct Thread final : QThread
        {
            OQQtMessageQueues* queues;
            Listener listener;

            void run() override
            {
                QEventLoop loop; // makes the queue
                listener.window = queues->MakeWindow(listener);
                if (listener.window && listener.window->SetTimer(3, 1)) {
                    while (listener.told.size() < 3)
                        queues->Pump();
                }
                listener.window.reset();
            }
        } thread;

        thread.queues = &queues;
        thread.start();
        CHECK(thread.wait(10000));
        CHECK(thread.listener.told == std::vector<int64_t> { -3, -3, -3 });
        CHECK(fallback.made == 0);
    });
}
