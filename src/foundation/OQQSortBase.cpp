#include "foundation/OQQSortBase.h"

#include "foundation/OQArray.h"

#include <bit>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <utility>

namespace {

constexpr int ShellSortCount = 16; // ranges of up to so many elements need no partition
constexpr int ReservedRanges = 128; // two workers need less, as each leaves the larger side

// Good partitions halve a range. One that took so many was made to defeat the median of three, or
// the comparison contradicts itself; the rest is sorted in a way that never takes longer.
int AllowedSplits(int count)
{
    return 2 * std::bit_width(static_cast<unsigned>(count));
}

}

struct OQQSortBase::Shared
{
    std::mutex lock; // guards all below
    std::condition_variable changed;
    OQArray<Range> ranges;
    std::exception_ptr failure;
    bool mayStartHelper = false;
    int workers = 1;
    int idle = 0;
};

OQQSortBase::OQQSortBase()
    : m_shared(std::make_unique<Shared>())
{
    m_shared->ranges.Reserve(ReservedRanges);
}

OQQSortBase::~OQQSortBase()
{
    Finish();
}

void OQQSortBase::SortElements(int count, bool threaded)
{
    if (count < 2)
        return;
    {
        const std::lock_guard lock(m_shared->lock);
        m_shared->ranges.Clear();
        m_shared->failure = nullptr;
        m_shared->mayStartHelper = threaded;
        m_shared->workers = 1;
        m_shared->idle = 0;
    }
    WorkGuarded({ 0, count, AllowedSplits(count) });
    Stop();
    if (m_shared->failure)
        std::rethrow_exception(std::exchange(m_shared->failure, nullptr));
}

uint8_t OQQSortBase::Run()
{
    WorkGuarded({ 0, 0, 0 });
    return 1;
}

void OQQSortBase::WorkGuarded(Range range) noexcept
{
    try {
        Work(range);
    } catch (...) {
        const std::lock_guard lock(m_shared->lock);
        if (!m_shared->failure)
            m_shared->failure = std::current_exception();
        m_shared->changed.notify_all();
    }
}

void OQQSortBase::Work(Range range)
{
    do {
        while (range.count > ShellSortCount && range.splits > 0) {
            const int pivot = Partition(range.first, range.first + range.count - 1);
            Range smaller { range.first, pivot - range.first, range.splits - 1 };
            Range larger { pivot + 1, range.count - smaller.count - 1, range.splits - 1 };
            if (smaller.count > larger.count)
                std::swap(smaller, larger);
            Push(larger);
            range = smaller;
        }
        if (range.count <= ShellSortCount)
            ShellSort(range.first, range.count);
        else
            HeapSort(range.first, range.count);
    } while (Take(range));
}

void OQQSortBase::Push(Range range)
{
    bool startHelper = false;
    {
        const std::lock_guard lock(m_shared->lock);
        m_shared->ranges.Add(range);
        startHelper = std::exchange(m_shared->mayStartHelper, false);
        m_shared->workers += startHelper;
    }
    m_shared->changed.notify_one();
    if (startHelper && !Start()) {
        const std::lock_guard lock(m_shared->lock);
        m_shared->workers = 1;
    }
}

// False when nothing is left to do: no range on the stack, and nobody at work who could put one
// there; or when the other worker has failed.
bool OQQSortBase::Take(Range& range)
{
    std::unique_lock lock(m_shared->lock);
    ++m_shared->idle;
    if (m_shared->idle == m_shared->workers && m_shared->ranges.IsEmpty())
        m_shared->changed.notify_all();
    m_shared->changed.wait(lock, [this] {
        return m_shared->failure || !m_shared->ranges.IsEmpty()
            || m_shared->idle == m_shared->workers;
    });
    if (m_shared->failure || m_shared->ranges.IsEmpty())
        return false;
    --m_shared->idle;
    range = m_shared->ranges.Last();
    m_shared->ranges.Remove(m_shared->ranges.GetCount() - 1);
    return true;
}

void OQQSortBase::OrderTwo(int a, int b)
{
    if (CompareElements(a, b) > 0)
        SwapElements(a, b);
}

// Gives the place of an element that nothing before it is above and nothing behind it below. The
// bounds of both walks don't lean on the comparison.
int OQQSortBase::Partition(int first, int last)
{
    const int middle = first + (last - first) / 2;
    OrderTwo(first, middle);
    OrderTwo(middle, last);
    OrderTwo(first, middle);

    const int pivot = last - 1; // the last one stays where it is, being above the pivot
    SwapElements(middle, pivot);
    int left = first;
    int right = pivot;
    for (;;) {
        do
            ++left;
        while (left < pivot && CompareElements(left, pivot) < 0);
        do
            --right;
        while (right > first && CompareElements(right, pivot) > 0);
        if (left >= right)
            break;
        SwapElements(left, right);
    }
    SwapElements(left, pivot);
    return left;
}

void OQQSortBase::ShellSort(int first, int count)
{
    for (int64_t gap = count / 2; gap > 0; gap = gap == 2 ? 1 : gap * 5 / 11) {
        const int step = static_cast<int>(gap);
        const int end = first + count;
        for (int i = first + step; i < end; ++i) {
            for (int j = i; j - step >= first && CompareElements(j - step, j) > 0; j -= step)
                SwapElements(j - step, j);
        }
    }
}

void OQQSortBase::HeapSort(int first, int count)
{
    for (int root = count / 2 - 1; root >= 0; --root)
        SiftDown(first, root, count);
    for (int end = count - 1; end > 0; --end) {
        SwapElements(first, first + end);
        SiftDown(first, 0, end);
    }
}

void OQQSortBase::SiftDown(int first, int root, int count)
{
    while (root < count / 2) {
        int child = 2 * root + 1;
        if (child + 1 < count && CompareElements(first + child, first + child + 1) < 0)
            ++child;
        if (CompareElements(first + root, first + child) >= 0)
            break;
        SwapElements(first + root, first + child);
        root = child;
    }
}
