#pragma once

#include "expression/CMathColumns.h"
#include "foundation/OQParallelRows.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <optional>

// Calls fill(columns, first, end) for bands that together are the rows of a map, on several threads
// if the equation allows it. The variables end as those of the last point. False if a helper had no
// memory.
template <typename Fill>
bool FillColumnRows(CMathColumns& columns, int32_t width, int32_t height, const Fill& fill)
{
    const std::optional<CMathColumns> detached = columns.Detached();
    if (!detached) {
        fill(columns, 0, height);
        return true;
    }
    std::atomic<bool> complete = true;
    OQParallelRows(0, height, width, [&](int32_t first, int32_t end) {
        try {
            CMathColumns own = *detached;
            fill(own, first, end);
        } catch (const std::bad_alloc&) {
            complete = false;
        }
    });
    // Other equations may share the variables, which detached copies leave alone.
    if (complete && height > 0)
        fill(columns, height - 1, height);
    return complete;
}

// Calls run(column, count) for pieces of a row that columns can take.
template <typename Run>
void ForColumnPieces(int32_t width, const Run& run)
{
    for (int32_t column = 0; column < width; column += CMathColumns::kLanes)
        run(column, std::min(CMathColumns::kLanes, width - column));
}
