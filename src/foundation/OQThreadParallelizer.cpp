#include "foundation/OQThreadParallelizer.h"

#include "foundation/OQEngineContext.h"
#include "foundation/OQFloatingPointScope.h"
#include "os/Thread.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <vector>

struct OQThreadParallelizer::Loop
{
    std::mutex busy; // held by the thread whose loop it is

    std::mutex lock; // of all that follows
    std::condition_variable wake;
    std::condition_variable done;
    IThreadParallelizerWorker* worker = nullptr;
    int64_t next = 0;
    int64_t last = -1;
    int32_t invited = 0; // helpers that may still join; those that wake too late don't
    int32_t joined = 0; // in this loop; the number of the last one
    int32_t working = 0; // helpers
    std::vector<std::unique_ptr<pxvis::os::Thread>> helpers; // only under `busy`

    void TakeIndexes(int32_t thread)
    {
        for (;;) {
            int64_t index = 0;
            {
                const std::lock_guard guard(lock);
                if (next > last)
                    return;
                index = next++;
            }
            worker->Work(static_cast<int32_t>(index), thread);
        }
    }

    // Without end: a helper lives as long as the process.
    static void Help(void* context)
    {
        Loop& loop = *static_cast<Loop*>(context);
        const OQFloatingPointScope scope;
        std::unique_lock guard(loop.lock);
        for (;;) {
            loop.wake.wait(guard, [&loop] { return loop.invited > 0; });
            --loop.invited;
            const int32_t number = ++loop.joined;
            ++loop.working;
            guard.unlock();
            loop.TakeIndexes(number);
            guard.lock();
            if (--loop.working == 0)
                loop.done.notify_one();
        }
    }
};

OQThreadParallelizer& OQThreadParallelizer::Get()
{
    static auto* const parallelizer = new OQThreadParallelizer;
    return *parallelizer;
}

OQThreadParallelizer::OQThreadParallelizer()
    : m_loop(new Loop)
{
}

void OQThreadParallelizer::Run(IThreadParallelizerWorker& worker, int32_t last, int32_t mostThreads)
{
    Loop& loop = *m_loop;
    const int64_t threads = std::min(int64_t { mostThreads }, int64_t { last } + 1);
    std::unique_lock busy(loop.busy, std::defer_lock);
    if (threads <= 1 || !busy.try_lock()) {
        for (int64_t index = 0; index <= last; ++index)
            worker.Work(static_cast<int32_t>(index), 0);
        return;
    }
    while (static_cast<int64_t>(loop.helpers.size()) < threads - 1) {
        auto helper = std::make_unique<pxvis::os::Thread>();
        if (helper->Start(Loop::Help, &loop) != 0)
            break; // fewer will do
        loop.helpers.push_back(std::move(helper));
    }
    {
        const std::lock_guard guard(loop.lock);
        loop.worker = &worker;
        loop.next = 0;
        loop.last = last;
        loop.joined = 0;
        loop.invited = static_cast<int32_t>(
            std::min(threads - 1, static_cast<int64_t>(loop.helpers.size())));
    }
    loop.wake.notify_all();
    loop.TakeIndexes(0);
    std::unique_lock guard(loop.lock);
    loop.invited = 0;
    loop.done.wait(guard, [&loop] { return loop.working == 0; });
}

int32_t OQMostThreads()
{
    const int32_t asked = OQCurrentEngineContext().mostThreads;
    if (asked > 0)
        return asked;
    static const int32_t processors = pxvis::os::ProcessorCount();
    return processors;
}
