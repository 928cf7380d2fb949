#include "engine2d/CVisFlashGrid.h"

#include <algorithm>

namespace {

using pxvis::kernels::LinearLightSum;

constexpr int64_t mostMeasured = 262144; // pixels

// Every other Fibonacci number, and for each the one before the last: that lattice is even.
struct Sampling
{
    int32_t step;
    int32_t shift;
};

constexpr Sampling samplings[] = { { 1, 0 }, { 5, 2 }, { 13, 5 }, { 34, 13 }, { 89, 34 } };

std::vector<int32_t> EndsOf(int32_t cells, int32_t pixels)
{
    std::vector<int32_t> ends(static_cast<size_t>(cells));
    for (int32_t i = 0; i < cells; ++i)
        ends[static_cast<size_t>(i)] = static_cast<int32_t>(int64_t { pixels } * (i + 1) / cells);
    return ends;
}

int32_t LengthAt(const std::vector<int32_t>& ends, size_t i)
{
    return ends[i] - (i > 0 ? ends[i - 1] : 0);
}

// The luminance and the excess of red are worked out from means of this unit.
int32_t MeanOf(uint64_t sum, uint32_t pixels)
{
    constexpr uint64_t unit = CVisFlashGrid::full / pxvis::kernels::linearLightFull;
    return static_cast<int32_t>(sum * unit / std::max(pixels, 1u));
}

}

bool CVisFlashGrid::SetSize(int32_t width, int32_t height)
{
    if (width == m_width && height == m_height)
        return false;
    m_width = width;
    m_height = height;
    const int32_t longer = std::max({ width, height, 1 });
    const auto cellsAlong = [&](int32_t pixels) {
        const int64_t cells = (int64_t { pixels } * longSide + longer / 2) / longer;
        return static_cast<int32_t>(std::min<int64_t>(std::max<int64_t>(cells, 1), pixels));
    };
    m_columnEnds = EndsOf(cellsAlong(width), width);
    m_rowEnds = EndsOf(cellsAlong(height), height);
    m_sums.resize(m_columnEnds.size());
    for (const Sampling& sampling : samplings) {
        m_step = sampling.step;
        m_shift = sampling.shift;
        if (Area() / m_step <= mostMeasured)
            break;
    }
    return true;
}

int64_t CVisFlashGrid::CellArea(size_t cell) const
{
    const size_t columns = m_columnEnds.size();
    return int64_t { LengthAt(m_columnEnds, cell % columns) } * LengthAt(m_rowEnds, cell / columns);
}

void CVisFlashGrid::Measure(std::vector<CVisFlashCell>& cells, const CVisPixels& picture)
{
    cells.clear();
    const auto columns = static_cast<int32_t>(m_columnEnds.size());
    int32_t y = 0;
    int32_t first = 0;
    for (const int32_t end : m_rowEnds) {
        std::fill(m_sums.begin(), m_sums.end(), LinearLightSum {});
        for (; y < end; ++y) {
            pxvis::kernels::SumLinearLight(
                m_sums.data(), m_columnEnds.data(), columns, picture.Row(y), first, m_step);
            first = (first + m_shift) % m_step;
        }
        for (const LinearLightSum& sum : m_sums)
            cells.push_back({ MeanOf(sum.red, sum.pixels), MeanOf(sum.green, sum.pixels),
                MeanOf(sum.blue, sum.pixels) });
    }
}
