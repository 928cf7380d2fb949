#include "kernels/DynamicTransformRow.h"

#include "kernels/VectorForm.h"
#include "kernels/Wrapped.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/DynamicTransformRowVector.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "kernels/FeedbackRow.h"

HWY_BEFORE_NAMESPACE();

namespace pxvis::kernels::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

using scalar::DynamicTransformRow;

#else

namespace {

constexpr int32_t cell = DynamicTransformPass::cell;
constexpr int32_t step = 1024 / cell; // fractions between two points are of 1024

// No wider than a cell, all of whose pixels lie between the same points.
using CellNumbers = hn::CappedTag<int32_t, cell>;
using CellVector = hn::Vec<CellNumbers>;

// Where the pixels of a row meet the columns of the grid, for the columns of one tile.
class GridLine
{
public:
    GridLine(const DynamicTransformPass& pass, int32_t y)
        : m_fraction(y % cell * step)
        , m_columns(pass.gridWidth)
    {
        const auto row = [&pass](int32_t number) {
            return pass.points
                + ptrdiff_t { std::min(number, pass.gridHeight - 1) } * pass.gridWidth * 2;
        };
        m_above = row(y / cell);
        m_below = row(y / cell + 1);
    }

    // For `cells` cells from a column on; behind the last column that one goes on.
    void Fill(int32_t column, int32_t cells)
    {
        const Numbers d;
        const int32_t* above = m_above + column * 2;
        const int32_t* below = m_below + column * 2;
        const int32_t wanted = (cells + 1) * 2;
        const int32_t there = std::min(wanted, (m_columns - column) * 2);
        const NumberVector fraction = hn::Set(d, m_fraction);
        int32_t i = 0;
        for (; i + VectorPixels() <= there; i += VectorPixels()) {
            const NumberVector a = hn::LoadU(d, above + i);
            const NumberVector b = hn::LoadU(d, below + i);
            const NumberVector move = hn::ShiftRight<10>(hn::Mul(hn::Sub(b, a), fraction));
            hn::StoreU(hn::Add(a, move), d, m_points + i);
        }
        for (; i < there; ++i) {
            const int32_t difference = SubtractWrapped(below[i], above[i]);
            m_points[i] = AddWrapped(above[i], MultiplyWrapped(difference, m_fraction) >> 10);
        }
        for (; i < wanted; ++i)
            m_points[i] = m_points[i - 2];
        for (i = 0; i < cells * 2; i += VectorPixels()) {
            const NumberVector a = hn::LoadU(d, m_points + i);
            hn::StoreU(hn::Sub(hn::LoadU(d, m_points + i + 2), a), d, m_differences + i);
        }
    }

    // Coordinate 0 or 1 of the displacements at fractions of the cell's width.
    HWY_INLINE CellVector At(int32_t number, int32_t coordinate, CellVector fractions) const
    {
        const CellNumbers d;
        const CellVector start = hn::Set(d, m_points[number * 2 + coordinate]);
        const CellVector difference = hn::Set(d, m_differences[number * 2 + coordinate]);
        return hn::Add(start, hn::ShiftRight<10>(hn::Mul(difference, fractions)));
    }

private:
    static constexpr int32_t capacity
        = (FeedbackTile::capacity / cell + 2) * 2 + 2 * HWY_MAX_BYTES / 4;

    const int32_t* m_above;
    const int32_t* m_below;
    int32_t m_fraction;
    int32_t m_columns;
    HWY_ALIGN int32_t m_points[capacity] = {}; // (x, y) pairs
    HWY_ALIGN int32_t m_differences[capacity] = {}; // of a point and the next
};

template <bool clips>
void Row(const DynamicTransformPass& pass, int32_t y)
{
    const CellNumbers d;
    const int32_t lanes = static_cast<int32_t>(hn::Lanes(d));
    const PixelRounding<CellNumbers> rounding(pass.ditherThreshold);
    const SourceIndexes<CellNumbers, clips> indexes(pass);
    const FeedbackColors<clips> colors(pass);
    const CellVector lane = hn::Iota(d, 0);
    const CellVector row = hn::Set(d, y);
    const ptrdiff_t rowStart = ptrdiff_t { pass.height - 1 - y } * pass.width;

    FeedbackTile tile;
    GridLine line(pass, y);
    const int32_t right = pass.width - 1;
    int32_t count = 0;
    // From column 0 on, which isn't drawn, so that tiles begin with a cell.
    for (int32_t left = 0; left < right; left += count) {
        count = TilePixels(right - left);
        const int32_t cells = (count + cell - 1) / cell;
        FetchAhead(pass.target + rowStart + left, count);
        line.Fill(left / cell, cells);
        for (int32_t number = 0; number < cells; ++number) {
            for (int32_t inCell = 0; inCell < cell; inCell += lanes) {
                // A pixel takes the fraction of the next one.
                const CellVector fractions
                    = hn::Mul(hn::Add(lane, hn::Set(d, inCell + 1)), hn::Set(d, step));
                const int32_t first = number * cell + inCell;
                const CellVector column = hn::Add(lane, hn::Set(d, left + first));
                indexes.Store(hn::Add(column, rounding.Round(line.At(number, 0, fractions))),
                    hn::Add(row, rounding.Round(line.At(number, 1, fractions))), tile, first);
            }
        }
        FetchPixels(pass.source, tile.indexes, count, tile.samples);
        const int32_t skip = left == 0 ? 1 : 0;
        const ptrdiff_t start = rowStart + left + skip;
        colors.Store(tile, skip, pass.source + start, pass.target + start, count - skip);
    }
}

}

void DynamicTransformRow(const DynamicTransformPass& pass, int32_t y)
{
    if (!FitsVectors(pass))
        scalar::DynamicTransformRow(pass, y);
    else if (pass.clips)
        Row<true>(pass, y);
    else
        Row<false>(pass, y);
}

#endif

}

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace pxvis::kernels {

PXVIS_VECTOR_KERNEL(DynamicTransformRow, (const DynamicTransformPass& pass, int32_t y), (pass, y))

}

#endif
