#include "foundation/OQTruncate.h"

#include <cmath>
#include <doctest/doctest.h>
#include <initializer_list>

TEST_CASE("Truncation goes toward zero and gives the most negative integer out of range")
{
    constexpr int32_t kIndefinite = std::numeric_limits<int32_t>::min();
    CHECK(OQTruncateToInt32(1.9) == 1);
    CHECK(OQTruncateToInt32(-1.9) == -1);
    CHECK(OQTruncateToInt32(2147483647.9) == 2147483647);
    CHECK(OQTruncateToInt32(-2147483648.9) == kIndefinite);
    for (const double out : { 2147483648.0, -2147483649.0, 1e300, -1e300, HUGE_VAL, -HUGE_VAL,
             std::nan(""), -std::nan("") })
        CHECK(OQTruncateToInt32(out) == kIndefinite);

    CHECK(OQTruncateToInt32(-0.99f) == 0);
    CHECK(OQTruncateToInt32(2147483520.0f) == 2147483520);
    for (const float out : { 2147483648.0f, -2147483904.0f, HUGE_VALF, -HUGE_VALF, std::nanf("") })
        CHECK(OQTruncateToInt32(out) == kIndefinite);

    CHECK(OQTruncateToInt64(-2147483649.5) == -2147483649);
    CHECK(OQTruncateToInt64(9223372036854774784.0) == 9223372036854774784);
    for (const double out : { 9223372036854775808.0, -9223372036854777856.0, std::nan("") })
        CHECK(OQTruncateToInt64(out) == std::numeric_limits<int64_t>::min());
}
