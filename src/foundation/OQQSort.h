#pragma once

#include "foundation/OQArray.h"
#include "foundation/OQQSortBase.h"

template <class T>
class IOQQSortCompare
{
public:
    // Below, equal to or above 0. In a threaded sort two threads call it at once.
    virtual int Compare(const T* a, const T* b) const = 0;

protected:
    ~IOQQSortCompare() = default;
};

// Sorts arrays in place; equal elements end in any order. A comparison that contradicts itself
// gives some order of the same elements. The comparison must live as long as the sort.
template <class T>
class OQQSort final : public OQQSortBase
{
public:
    explicit OQQSort(const IOQQSortCompare<T>& compare)
        : m_compare(compare)
    {
    }

    ~OQQSort() override { this->Finish(); }

    // What the comparison throws comes through; the array then holds the same elements in some
    // order. Threaded: a second thread helps with all but the smallest arrays.
    void Sort(T* elements, int count, bool threaded = false)
    {
        m_elements = elements;
        this->SortElements(count, threaded);
    }

    template <class Arg, bool HasLifetime>
    void Sort(OQArray<T, Arg, HasLifetime>& array, bool threaded = false)
    {
        Sort(array.GetData(), array.GetCount(), threaded);
    }

private:
    static_assert(std::is_nothrow_swappable_v<T>);

    int CompareElements(int a, int b) const override
    {
        return m_compare.Compare(m_elements + a, m_elements + b);
    }

    void SwapElements(int a, int b) override
    {
        if (a == b)
            return;
        using std::swap;
        swap(m_elements[a], m_elements[b]);
    }

    const IOQQSortCompare<T>& m_compare;
    T* m_elements = nullptr;
};
