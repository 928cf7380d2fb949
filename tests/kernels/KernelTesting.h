#pragma once

#include "kernels/KernelForm.h"

#include <doctest/doctest.h>
#include <hwy/targets.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

// Runs check() once for each instruction set that the machine has, beside which the kernels take
// no better one.
template <typename Check>
void ForEachInstructionSet(const Check& check)
{
    int sets = 0;
    for (int64_t left = hwy::SupportedTargets(); left != 0; left &= left - 1) {
        const int64_t target = left & -left;
        INFO("instruction set " << std::string(hwy::TargetName(target)));
        hwy::SetSupportedTargetsForTest(target);
        check();
        ++sets;
    }
    hwy::SetSupportedTargetsForTest(0);
    CHECK(sets > 1);
}

// A row of anything, at any offset from an aligned address, with guards round it that are compared
// as the row is.
template <typename Item>
class GuardedRow
{
public:
    GuardedRow(size_t count, size_t offset, std::mt19937& random)
        : m_items(count + 2 * guardItems + offset)
        , m_start(guardItems + offset)
    {
        for (Item& item : m_items)
            item = static_cast<Item>(random());
    }

    Item* Data() { return m_items.data() + m_start; }

    // By bits, so that NaN counts.
    bool operator==(const GuardedRow& other) const
    {
        return m_items.size() == other.m_items.size()
            && std::memcmp(m_items.data(), other.m_items.data(), m_items.size() * sizeof(Item))
            == 0;
    }

private:
    static constexpr size_t guardItems = 32;

    std::vector<Item> m_items;
    size_t m_start;
};
