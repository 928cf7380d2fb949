#include "foundation/OQEvent.h"

#include <doctest/doctest.h>

#include <atomic>
#include <chrono>
#include <poll.h>
#include <sys/resource.h>
#include <thread>
#include <vector>

using pxvis::os::Event;
using pxvis::os::WaitAny;
using pxvis::os::WaitItem;

TEST_CASE("An event that is reset by hand lets everybody through until then")
{
    OQEvent event(true);
    CHECK_FALSE(event.Wait(0));
    event.Set();
    event.Set();
    CHECK(event.Wait(0));
    CHECK(event.Wait(-1));
    pollfd polled { event.GetHandle(), POLLIN, 0 };
    CHECK(poll(&polled, 1, 0) == 1);
    event.Reset();
    CHECK_FALSE(event.Wait(5));
}

TEST_CASE("An event that resets itself lets one wait through, of however many threads")
{
    OQEvent event(false);
    event.Set();
    event.Set();
    CHECK(event.Wait(0));
    CHECK_FALSE(event.Wait(0));

    constexpr int count = 500;
    int shared = 0; // whoever comes through has it alone until the next Set
    std::atomic<int> passed = 0;
    std::vector<std::jthread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&] {
            for (;;) {
                event.Wait(-1);
                const bool last = ++shared >= count;
                ++passed;
                event.Set();
                if (last)
                    return;
            }
        });
    }
    event.Set();
    threads.clear();
    CHECK(shared == count + 2);
    CHECK(passed == count + 2);
}

TEST_CASE("A wait for several things tells the first that is ready and resets that one alone")
{
    Event first(false);
    Event second(false);
    Event manual(true);
    const WaitItem items[]
        = { &first, nullptr, &second, manual.GetDescriptor(), static_cast<Event*>(nullptr) };
    CHECK(WaitAny(items, 0) == pxvis::os::WaitTimeout);
    second.Set();
    manual.Set();
    first.Set();
    CHECK(WaitAny(items, -1) == 0);
    CHECK(WaitAny(items, -1) == 2);
    CHECK(WaitAny(items, -1) == 3);
    CHECK(WaitAny({}, -1) == pxvis::os::WaitFailed);
    CHECK(WaitAny({}, 1) == pxvis::os::WaitTimeout);
}

TEST_CASE("A wait for nothing that comes never ends early")
{
    Event other(true);
    const auto start = std::chrono::steady_clock::now();
    CHECK_FALSE(other.Wait(30));
    CHECK(std::chrono::steady_clock::now() - start >= std::chrono::milliseconds(30));
}

TEST_CASE("Without descriptors an event is never set and nobody waits for it for ever")
{
    rlimit before {};
    getrlimit(RLIMIT_NOFILE, &before);
    rlimit none = before;
    none.rlim_cur = 0;
    setrlimit(RLIMIT_NOFILE, &none);
    OQEvent event(true);
    setrlimit(RLIMIT_NOFILE, &before);
    CHECK(event.GetHandle() == -1);
    event.Set();
    event.Reset();
    CHECK_FALSE(event.Wait(-1));
    CHECK_FALSE(event.Wait(1));
}
