#include "foundation/OQQSort.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

// Counts how often it was asked; two threads may ask at once.
template <class T>
class Counting : public IOQQSortCompare<T>
{
public:
    int Compare(const T* a, const T* b) const override
    {
        calls.fetch_add(1, std::memory_order_relaxed);
        return *a < *b ? -1 : *b < *a ? 1 : 0;
    }

    mutable std::atomic<int64_t> calls = 0;
};

// Says what it likes, whatever it is asked, and at last throws.
class Liar final : public IOQQSortCompare<std::string>
{
public:
    explicit Liar(int answer, int64_t patience = INT64_MAX)
        : m_answer(answer)
        , m_patience(patience)
    {
    }

    int Compare(const std::string* a, const std::string* b) const override
    {
        // Out of bounds, the address sanitizer would tell.
        const size_t length = a->size() + b->size();
        const int64_t call = m_calls.fetch_add(1, std::memory_order_relaxed);
        if (call >= m_patience)
            throw std::runtime_error("enough");
        return m_answer != 2 ? m_answer
                             : static_cast<int>((call * 2654435761u + length) >> 7 & 3) - 1;
    }

    int64_t Calls() const { return m_calls; }

private:
    int m_answer; // 2: a mix
    int64_t m_patience;
    mutable std::atomic<int64_t> m_calls = 0;
};

OQArray<std::string> Names(int count)
{
    OQArray<std::string> names;
    for (int i = 0; i < count; ++i)
        names.Add("a name that the heap keeps, number " + std::to_string(i * 7919 % count));
    return names;
}

// The elements in a row, whatever order they are in.
std::vector<std::string> Inventory(const OQArray<std::string>& names)
{
    std::vector<std::string> all(names.begin(), names.end());
    std::sort(all.begin(), all.end());
    return all;
}

// Elements that make every median of three the second least one: an adversary answers so that
// whatever is asked about stays as open as it can.
class Adversary final : public IOQQSortCompare<int>
{
public:
    explicit Adversary(int count)
        : m_values(size_t(count), Open)
    {
    }

    int Compare(const int* a, const int* b) const override
    {
        ++calls;
        const auto x = size_t(*a);
        const auto y = size_t(*b);
        if (m_values[x] == Open && m_values[y] == Open)
            m_values[*a == m_candidate ? x : y] = m_next++;
        if (m_values[x] == Open)
            m_candidate = *a;
        else if (m_values[y] == Open)
            m_candidate = *b;
        return m_values[x] < m_values[y] ? -1 : m_values[x] > m_values[y] ? 1 : 0;
    }

    mutable int64_t calls = 0;

private:
    static constexpr int Open = INT32_MAX;
    mutable std::vector<int> m_values;
    mutable int m_candidate = -1;
    mutable int m_next = 0;
};

}

TEST_CASE("Every length and pattern comes out sorted, on one thread and on two")
{
    std::mt19937 random(1);
    const Counting<int> compare;
    OQQSort<int> sort(compare);
    for (const bool threaded : { false, true }) {
        for (const int count : { 0, 1, 2, 3, 4, 15, 16, 17, 18, 33, 34, 100, 1000, 4321 }) {
            for (const int distinct : { 1, 2, 17, 1 << 30 }) {
                OQNumberArray<int> array;
                for (int i = 0; i < count; ++i)
                    array.Add(static_cast<int>(random() % unsigned(distinct)));
                std::vector<int> expected(array.begin(), array.end());
                std::sort(expected.begin(), expected.end());
                CAPTURE(count);
                CAPTURE(distinct);
                for (int pass = 0; pass < 3; ++pass) { // random, rising, falling
                    sort.Sort(array, threaded);
                    REQUIRE(std::equal(expected.begin(), expected.end(), array.begin()));
                    if (pass == 1)
                        std::reverse(array.begin(), array.end());
                }
            }
        }
    }
}

TEST_CASE("The helper starts with the first range on the stack, and only if asked for")
{
    const Counting<int> compare;
    OQQSort<int> sort(compare);
    OQNumberArray<int> array;
    for (int i = 0; i < 5000; ++i)
        array.Add(i * 7919 % 5000);
    sort.Sort(array);
    CHECK(sort.GetStartCount() == 0);
    sort.Sort(array.GetData(), 16, true);
    CHECK(sort.GetStartCount() == 0);
    sort.Sort(array.GetData(), 17, true);
    CHECK(sort.GetStartCount() == 1);
    for (int i = 0; i < 50; ++i)
        sort.Sort(array, true);
    CHECK(sort.GetStartCount() == 51);
    CHECK_FALSE(sort.IsRunning());
}

TEST_CASE("Sorted and random arrays take about n log n comparisons, and hostile ones not many more")
{
    constexpr int count = 20000;
    for (const int factor : { 1, 7919, 0 }) {
        OQNumberArray<int> array;
        for (int i = 0; i < count; ++i)
            array.Add(static_cast<int>(int64_t { i } * factor % count));
        const Counting<int> compare;
        OQQSort<int>(compare).Sort(array);
        CHECK(compare.calls < 20 * count);
    }
    OQNumberArray<int> array;
    for (int i = 0; i < count; ++i)
        array.Add(i);
    const Adversary adversary(count);
    OQQSort<int>(adversary).Sort(array);
    CHECK(adversary.calls < 100 * count);
}

TEST_CASE("A comparison that contradicts itself ends, within bounds and without losing an element")
{
    constexpr int count = 6000;
    for (const bool threaded : { false, true }) {
        for (const int answer : { -1, 0, 1, 2 }) {
            OQArray<std::string> names = Names(count);
            const Liar liar(answer);
            OQQSort<std::string>(liar).Sort(names, threaded);
            CAPTURE(answer);
            CHECK(liar.Calls() < 200 * count);
            CHECK(Inventory(names) == Inventory(Names(count)));
        }
    }
}

TEST_CASE("What the comparison throws comes through, from either thread, and nothing is lost")
{
    constexpr int count = 3000;
    for (const bool threaded : { false, true }) {
        for (const int64_t patience : { 0, 1, 5, 3000, 10000, 20000 }) {
            OQArray<std::string> names = Names(count);
            const Liar liar(2, patience);
            OQQSort<std::string> sort(liar);
            CHECK_THROWS_AS(sort.Sort(names, threaded), std::runtime_error);
            CHECK_FALSE(sort.IsRunning());
            CHECK(Inventory(names) == Inventory(Names(count)));
        }
    }
}
