#pragma once

#include <cstdint>

// The work of a parallel loop, called on several threads at once. It must not throw.
class IThreadParallelizerWorker
{
public:
    // `thread`: 0 for the thread that runs the loop, its helpers count on from 1; no two calls with
    // the same number overlap.
    virtual void Work(int32_t index, int32_t thread) noexcept = 0;

protected:
    ~IThreadParallelizerWorker() = default;
};
