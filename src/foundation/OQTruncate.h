#pragma once

#include <cstdint>
#include <limits>

// Truncation toward zero as every picture assumes it: a value out of range, and NaN, give the most
// negative integer. A plain cast is undefined there and differs between processors.

inline int32_t OQTruncateToInt32(double value)
{
    // -2147483648.9 still truncates into the range; the comparison is false for NaN.
    return value > -2147483649.0 && value < 2147483648.0 ? static_cast<int32_t>(value)
                                                         : std::numeric_limits<int32_t>::min();
}

inline int32_t OQTruncateToInt32(float value)
{
    // No float lies strictly between -2147483648 - 256 and -2147483648.
    return value >= -2147483648.0f && value < 2147483648.0f ? static_cast<int32_t>(value)
                                                            : std::numeric_limits<int32_t>::min();
}

inline int64_t OQTruncateToInt64(double value)
{
    // 2^63; doubles are 1024 apart there or more, so nothing lies just below -2^63.
    return value >= -9223372036854775808.0 && value < 9223372036854775808.0
        ? static_cast<int64_t>(value)
        : std::numeric_limits<int64_t>::min();
}
