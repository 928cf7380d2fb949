#include "SlotOf.h"
#include "foundation/IOQWindowServices.h"
#include "foundation/OQMainThreadWindow.h"
#include "foundation/OQThread.h"
#include "siblings/tools/ToolsTesting.h"

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace {

class Callback final : public IMainThreadMessageManagerCallback
{
public:
    void OnMainThreadMessage() override
    {
        ++calls;
        if (onCall)
            onCall();
    }

    int calls = 0; // the main thread's
    std::function<void()> onCall;
};

class Waker final : public IOQMainThreadWaker
{
public:
    bool WakeMainThread() override { return ++wakes && works; }

    std::atomic<int> wakes = 0;
    std::atomic<bool> works = true;
};

struct Fixture
{
    TestFolder folder;
    Waker waker;
    OQToolsSetup setup { .mainThread = &waker };
    OQSiblingModules modules { {},
        { .name = PXVIS_BINARY_DIR "/bin/OQTools.so", .parameter = &setup } };
    IOQMainThreadMessages& messages = *modules.Tools()->GetMainThreadMessages(1);
};

}

TEST_CASE("Posts of many threads arrive on the main thread, which is woken for them")
{
    constexpr int posts = 500;
    Fixture f;
    Callback callbacks[4];
    std::vector<std::jthread> threads;
    for (Callback& callback : callbacks) {
        threads.emplace_back([&] {
            for (int i = 0; i < posts; ++i)
                CHECK(f.messages.Post(&callback));
            CHECK(f.messages.DeliverPending() == 0); // not here
            CHECK(f.messages.Deliver(&callback) == 0);
        });
    }
    int calls = 0;
    for (int seen = 0; calls < 4 * posts;) {
        while (f.waker.wakes == seen)
            std::this_thread::yield();
        seen = f.waker.wakes;
        calls += f.messages.DeliverPending();
    }
    threads.clear();
    for (const Callback& callback : callbacks)
        CHECK(callback.calls == posts);
    CHECK(f.messages.DeliverPending() == 0);
}

TEST_CASE("Messages are delivered at once or forgotten for one callback alone")
{
    Fixture f;
    Callback a;
    Callback b;
    CHECK_FALSE(f.messages.Post(nullptr));
    for (int i = 0; i < 3; ++i) {
        f.messages.Post(&a);
        f.messages.Post(&b);
    }
    CHECK(f.waker.wakes == 1);
    CHECK(f.messages.Deliver(&b) == 3);
    CHECK(f.messages.Forget(&a) == 3);
    CHECK(f.messages.DeliverPending() == 0);
    CHECK(a.calls == 0);
    CHECK(b.calls == 3);

    a.onCall = [&] {
        f.messages.Post(&a); // comes the next time
        f.messages.Forget(&b);
    };
    f.messages.Post(&a);
    f.messages.Post(&b);
    CHECK(f.messages.DeliverPending() == 1);
    CHECK(b.calls == 3);
    a.onCall = nullptr;
    CHECK(f.messages.DeliverPending() == 1);

    f.waker.works = false;
    f.waker.wakes = 0;
    f.messages.Post(&b);
    f.messages.Post(&b);
    CHECK(f.waker.wakes == 2); // each tries again
    f.messages.Forget(&b);
    int32_t taken = 0;
    while (f.messages.Post(&b))
        ++taken;
    CHECK(taken == 16384);
    CHECK(f.messages.Forget(&b) == taken);
}

TEST_CASE("A callback that another thread forgets isn't called any more when that returns")
{
    Fixture f;
    for (int round = 0; round < 50; ++round) {
        auto callback = std::make_unique<Callback>();
        for (int i = 0; i < 5; ++i)
            f.messages.Post(callback.get());
        std::jthread other([&] {
            f.messages.Forget(callback.get());
            callback.reset();
        });
        f.messages.DeliverPending();
    }
}

TEST_CASE("The operations of main-thread messages keep their places")
{
    CHECK(SlotOf(&IMainThreadMessageManagerCallback::OnMainThreadMessage) == 0);
    CHECK(SlotOf(&IOQMainThreadWaker::WakeMainThread) == 0);
    CHECK(SlotOf(&IOQMainThreadMessages::Post) == 0);
    CHECK(SlotOf(&IOQMainThreadMessages::Deliver) == 1);
    CHECK(SlotOf(&IOQMainThreadMessages::Forget) == 2);
    CHECK(SlotOf(&IOQMainThreadMessages::DeliverPending) == 3);
}
