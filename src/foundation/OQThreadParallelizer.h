#pragma once

#include "foundation/IThreadParallelizerWorker.h"

#include <cstdint>
#include <memory>

// Runs loops on several threads. The process has one, whose helper threads wait between the loops;
// any thread may use it. While a loop runs, those of other threads, and loops inside of Work, run
// on the thread that calls them alone.
class OQThreadParallelizer
{
public:
    static OQThreadParallelizer& Get();

    // Calls Work for each index from 0 to `last`, both included, in no particular order, on at most
    // `mostThreads` threads, the calling one among them; returns when all are done.
    void Run(IThreadParallelizerWorker& worker, int32_t last, int32_t mostThreads);

private:
    struct Loop;

    OQThreadParallelizer();

    // Never destroyed: a thread may draw until the very end of the process.
    Loop* const m_loop;
};

// How many threads a loop of the running operation may take: what its engine context says, or as
// many as the machine has processors.
int32_t OQMostThreads();
