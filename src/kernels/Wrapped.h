#pragma once

#include <cstdint>

// 32-bit arithmetic that wraps: scripts may ask for any number, and the result must be the same
// everywhere.
namespace pxvis::kernels {

constexpr int32_t AddWrapped(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

constexpr int32_t SubtractWrapped(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

constexpr int32_t MultiplyWrapped(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}

}
