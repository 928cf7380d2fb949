#include "foundation/OQEngineContext.h"
#include "foundation/OQParallelRows.h"
#include "foundation/OQThreadParallelizer.h"

#include <doctest/doctest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

// Counts how often each index comes, and whether two calls with one number overlap.
class Counting final : public IThreadParallelizerWorker
{
public:
    explicit Counting(int32_t last, int32_t inner = -1)
        : m_counts(static_cast<size_t>(last) + 1)
        , m_inner(inner)
    {
    }

    void Work(int32_t index, int32_t thread) noexcept override
    {
        if (thread < 0 || thread >= mostThreads || m_busy[thread].exchange(true)) {
            ++faults;
            return;
        }
        ++m_counts[static_cast<size_t>(index)];
        if (m_inner >= 0) {
            Counting inner(m_inner);
            OQThreadParallelizer::Get().Run(inner, m_inner, mostThreads);
            faults += inner.AllOnce() ? 0 : 1;
        }
        std::this_thread::yield();
        m_busy[thread] = false;
    }

    bool AllOnce() const
    {
        bool all = faults == 0;
        for (const auto& count : m_counts)
            all = all && count == 1;
        return all;
    }

    static constexpr int32_t mostThreads = 6;
    std::atomic<int> faults = 0;

private:
    std::vector<std::atomic<int>> m_counts;
    std::atomic<bool> m_busy[mostThreads] {};
    int32_t m_inner;
};

}

TEST_CASE("A parallel loop works on every index once, whoever else runs one, inside it, too")
{
    const auto runLoops = [] {
        for (int32_t loop = 0; loop < 300; ++loop) {
            const int32_t last = loop % 40;
            Counting worker(last, loop % 7 == 0 ? 5 : -1);
            OQThreadParallelizer::Get().Run(worker, last, 1 + loop % Counting::mostThreads);
            CHECK(worker.AllOnce());
        }
    };
    std::thread other(runLoops);
    runLoops();
    other.join();
    Counting nothing(0);
    OQThreadParallelizer::Get().Run(nothing, -1, 4);
    CHECK(nothing.faults == 0);
    CHECK_FALSE(nothing.AllOnce());
}

TEST_CASE("Bands of rows cover them all once, at any number of threads")
{
    OQEngineContext context;
    const OQEngineContextScope scope(&context);
    for (const int32_t threads : { 1, 2, 3, 6 }) {
        context.mostThreads = threads;
        for (const int32_t bottom : { -5, 3, 4, 10, 11, 97 }) {
            std::vector<int> rows(100);
            OQParallelRows(3, bottom, 100'000, [&](int32_t first, int32_t end) {
                for (int32_t y = first; y < end; ++y)
                    ++rows[static_cast<size_t>(y)];
            });
            for (int32_t y = 0; y < 100; ++y)
                CHECK(rows[static_cast<size_t>(y)] == (y >= 3 && y < bottom ? 1 : 0));
        }
    }
}
