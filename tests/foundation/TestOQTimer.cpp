#include "SlotOf.h"
#include "foundation/OQTimer.h"

#include <doctest/doctest.h>

#include <chrono>
#include <thread>

TEST_CASE("A timer runs from the moment it is made until it is asked to restart")
{
    OQTimer whole;
    OQTimer timer;
    std::this_thread::sleep_for(std::chrono::milliseconds(3));
    const int64_t first = timer.GetElapsed(false);
    CHECK(first >= 3'000'000);
    CHECK(timer.GetElapsed(false) >= first);
    CHECK(timer.GetElapsedMs(true) >= 3);
    int64_t restarted = timer.GetElapsed(false);
    CHECK(restarted + 3'000'000 <= whole.GetElapsed(false));
    whole.Start();
    restarted = whole.GetElapsed(false);
    CHECK(restarted <= timer.GetElapsed(false));

    CHECK(SlotOf(&OQTimer::Start) == 2);
    CHECK(SlotOf(&OQTimer::GetElapsed) == 3);
    CHECK(SlotOf(&OQTimer::GetElapsedMs) == 4);
}
