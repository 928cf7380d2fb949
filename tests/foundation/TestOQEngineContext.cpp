#include "foundation/OQEngineContext.h"

#include <doctest/doctest.h>

TEST_CASE("The generator is the linear congruential one, and each context has its own state")
{
    OQEngineContext first;
    OQEngineContext second;
    {
        OQEngineContextScope scope(&first);
        // 1 * 214013 + 2531011 = 2745024 = 41 * 65536 + 58048
        CHECK(OQRand() == 41);
        CHECK(OQRand() == 18467);
    }
    {
        OQEngineContextScope scope(&second);
        CHECK(OQRand() == 41);
        OQSeedRand(1);
        CHECK(OQRand() == 41);
    }
    CHECK(first.randomState != second.randomState);
}

TEST_CASE("A virtual clock truncates to milliseconds, and the equations seed from it once")
{
    OQEngineContext context;
    context.virtualClock = true;
    context.virtualNanoseconds = 1'000'016'666'666;
    OQEngineContextScope scope(&context);
    CHECK(OQClockNanoseconds() == 1'000'016'666'666);
    CHECK(OQClockMilliseconds() == 1'000'016);
    OQSeedRandForEquations();
    CHECK(context.randomState == 1'000'016u);
    OQRand();
    const uint32_t moved = context.randomState;
    OQSeedRandForEquations();
    CHECK(context.randomState == moved);
}
