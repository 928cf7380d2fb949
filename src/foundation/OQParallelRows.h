#pragma once

#include "foundation/OQThreadParallelizer.h"

#include <algorithm>
#include <cstdint>

// Calls draw(first, end) for bands that together are the rows from `top` to `bottom` (not
// included), on several threads if the rows are worth it. draw must not throw, and the result must
// not depend on the order. `width`: pixels a row.
template <typename Draw>
void OQParallelRows(int32_t top, int32_t bottom, int32_t width, const Draw& draw)
{
    // Below this the threads cost more than they bring.
    constexpr int64_t fewestPixels = 50'000;
    constexpr int32_t bandsPerThread = 4; // the machine's other work keeps threads from being equal

    struct Worker final : IThreadParallelizerWorker
    {
        void Work(int32_t index, int32_t) noexcept override
        {
            const int32_t first = top + index * rowsPerBand;
            (*draw)(first, std::min(first + rowsPerBand, bottom));
        }

        int32_t top = 0;
        int32_t bottom = 0;
        int32_t rowsPerBand = 0;
        const Draw* draw = nullptr;
    };

    const int64_t rows = int64_t { bottom } - top;
    if (rows <= 0)
        return;
    const int32_t threads = rows * width < fewestPixels ? 1 : OQMostThreads();
    if (threads == 1) {
        draw(top, bottom);
        return;
    }
    Worker worker;
    worker.top = top;
    worker.bottom = bottom;
    const int64_t bands = std::min(rows, int64_t { threads } * bandsPerThread);
    worker.rowsPerBand = static_cast<int32_t>((rows + bands - 1) / bands);
    worker.draw = &draw;
    OQThreadParallelizer::Get().Run(
        worker, static_cast<int32_t>((rows - 1) / worker.rowsPerBand), threads);
}
