#pragma once

#include "foundation/OQThread.h"

#include <memory>

// The sort itself, which knows elements by their indexes only and moves them by swaps: whatever the
// comparison says, and if it throws, the array holds what it held, in some order. Works without
// recursion. Ranges that are still to be sorted lie on a stack that the caller and, if asked for,
// one helper thread share.
class OQQSortBase : public OQThread
{
public:
    ~OQQSortBase() override;

protected:
    OQQSortBase();

    // What Compare throws on either thread is thrown here, when both have ended. One sort at a
    // time.
    void SortElements(int count, bool threaded);

    // Below, equal to or above 0. With a helper, both are called by two threads at once, for
    // different elements.
    virtual int CompareElements(int a, int b) const = 0;
    virtual void SwapElements(int a, int b) = 0;

private:
    struct Range
    {
        int first;
        int count;
        int splits; // that it may still take
    };

    struct Shared;

    uint8_t Run() override; // the helper
    void Work(Range range);
    void WorkGuarded(Range range) noexcept;
    void Push(Range range);
    bool Take(Range& range);
    int Partition(int first, int last);
    void OrderTwo(int a, int b);
    void ShellSort(int first, int count);
    void HeapSort(int first, int count);
    void SiftDown(int first, int root, int count); // root and count within the heap

    std::unique_ptr<Shared> m_shared;
};
