#include "kernels/DynamicTransformRow.h"

#include "kernels/Wrapped.h"

#include <algorithm>

namespace pxvis::kernels::scalar {

namespace {

constexpr int32_t cell = DynamicTransformPass::cell;
constexpr int32_t step = 1024 / cell; // fractions between two points are of 1024

struct Displacement // in 1/32 pixel
{
    int32_t x;
    int32_t y;
};

// a + fraction / 1024 of the way to b.
int32_t Interpolate(int32_t a, int32_t b, int32_t fraction)
{
    return AddWrapped(a, MultiplyWrapped(SubtractWrapped(b, a), fraction) >> 10);
}

Displacement Interpolate(const Displacement& a, const Displacement& b, int32_t fraction)
{
    return { Interpolate(a.x, b.x, fraction), Interpolate(a.y, b.y, fraction) };
}

Displacement PointAt(const DynamicTransformPass& pass, int32_t row, int32_t column)
{
    const int32_t lastRow = pass.gridHeight - 1;
    const int32_t lastColumn = pass.gridWidth - 1;
    const int32_t* point = pass.points
        + (ptrdiff_t { std::min(row, lastRow) } * pass.gridWidth + std::min(column, lastColumn))
            * 2;
    return { point[0], point[1] };
}

// Where the pixels of row y meet a column of the grid.
Displacement OnColumn(const DynamicTransformPass& pass, int32_t y, int32_t column)
{
    const int32_t row = y / cell;
    return Interpolate(
        PointAt(pass, row, column), PointAt(pass, row + 1, column), (y % cell) * step);
}

}

void DynamicTransformRow(const DynamicTransformPass& pass, int32_t y)
{
    const ptrdiff_t rowStart = ptrdiff_t { pass.height - 1 - y } * pass.width;
    const uint32_t* around = pass.source + rowStart;
    uint32_t* target = pass.target + rowStart;

    Displacement left {};
    Displacement right = OnColumn(pass, y, 0);
    for (int32_t x = 1; x < pass.width - 1; ++x) {
        const int32_t column = x / cell;
        if (x == 1 || x % cell == 0) {
            left = right;
            right = OnColumn(pass, y, column + 1);
        }
        // A pixel takes the fraction of the next one, so that the last of a cell is the point that
        // the next cell begins with.
        const Displacement move = Interpolate(left, right, (x % cell + 1) * step);
        const uint32_t sample = SampleSource(pass, x + RoundToPixel(move.x, pass.ditherThreshold),
            y + RoundToPixel(move.y, pass.ditherThreshold));
        target[x] = FeedbackPixel(pass, around + x, sample);
    }
}

}
