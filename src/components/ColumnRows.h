#pragma once

#include "expression/CMathColumns.h"
#include "foundation/OQParallelRows.h"

#include <algorithm>
#include <atomic>
#include <new>

// Calls fill(columns, first, end) for bands that together are the rows of a map, on several threads
// if the equation allows it. False if memory ran out.
template <typename Fill>
bool FillColumnRows(CMathColumns& columns, int32_t width, int32_t height, const Fill& fill)
{
    if (!columns.IsPure()) {
        fill(columns, 0, height);
        return true;
    }
    std::atomic<bool> complete = true;
    OQParallelRows(0, height, width, [&](int32_t first, int32_t end) {
        try {
            CMathColumns own = columns.Detached();
            fill(own, first, end);
        } catch (const std::bad_alloc&) {
            complete = false;
        }
    });
    return complete;
}

// Calls run(column, count) for pieces of a row that columns can take.
template <typename Run>
void ForColumnPieces(int32_t width, const Run& run)
{
    for (int32_t column = 0; column < width; column += CMathColumns::kLanes)
        run(column, std::min(CMathColumns::kLanes, width - column));
}
