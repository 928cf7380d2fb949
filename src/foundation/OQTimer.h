#pragma once

#include <atomic>
#include <cstdint>

// Measures time on the monotonic clock from the moment it is made. Any thread.
class OQTimer
{
public:
    OQTimer();
    virtual ~OQTimer() = default;

    virtual void Start(); // from 0 again
    virtual int64_t GetElapsed(bool restart); // nanoseconds
    virtual double GetElapsedMs(bool restart);

private:
    std::atomic<int64_t> m_start; // nanoseconds
};
