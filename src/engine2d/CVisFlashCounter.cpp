#include "engine2d/CVisFlashCounter.h"

#include "engine2d/CVisFlashMeter.h"

#include <algorithm>

namespace {

constexpr int32_t full = CVisFlashGrid::full;

int32_t LuminanceOf(const CVisFlashCell& cell)
{
    const int64_t sum
        = int64_t { cell.red } * 2126 + int64_t { cell.green } * 7152 + int64_t { cell.blue } * 722;
    return static_cast<int32_t>(sum / 10000);
}

}

void CVisFlashCounter::Restart()
{
    m_cells.clear();
    m_current = 0;
}

int32_t CVisFlashCounter::LargestArea() const
{
    int32_t percent = 0;
    for (const Transition& transition : m_transitions)
        percent = std::max(percent, transition.percent);
    return percent;
}

CVisFlashCounter::State CVisFlashCounter::StateOf(const CVisFlashCell& cell) const
{
    if (m_kind == CVisFlashKind::General) {
        const int32_t luminance = LuminanceOf(cell);
        return { luminance, luminance < full / 100 * 80 };
    }
    const int64_t others = int64_t { cell.green } + cell.blue;
    const int64_t excess = std::max<int64_t>(cell.red - others, 0);
    const bool isSaturated = cell.red > 0 && cell.red >= 4 * others; // R / (R + G + B) >= 0.8
    return { static_cast<int32_t>(excess), isSaturated };
}

bool CVisFlashCounter::IsChange(int64_t difference) const
{
    return m_kind == CVisFlashKind::General ? difference >= full / 10
                                            : difference > full / 320 * 20;
}

// True if the cell makes a transition: once on each way up or down, as soon as the way is long
// enough and one of its ends is a state that counts.
bool CVisFlashCounter::Step(Cell& cell, const State& state) const
{
    if (cell.direction == 0) {
        const bool rises = IsChange(state.value - cell.start.value);
        if (!rises && !IsChange(cell.extreme.value - state.value)) {
            if (state.value < cell.start.value)
                cell.start = state;
            if (state.value > cell.extreme.value)
                cell.extreme = state;
            return false;
        }
        cell.direction = rises ? 1 : -1;
        if (!rises)
            cell.start = cell.extreme;
        cell.extreme = state;
    } else if ((state.value - cell.extreme.value) * cell.direction > 0) {
        // Of red, all of the way counts: a bright pink at its end does not undo the red before it.
        const bool counted = m_kind == CVisFlashKind::Red && cell.extreme.counts;
        cell.extreme = state;
        cell.extreme.counts |= counted;
    } else if (IsChange((cell.extreme.value - state.value) * cell.direction)) {
        cell.start = cell.extreme;
        cell.extreme = state;
        cell.direction = -cell.direction;
        cell.isCounted = false;
    } else {
        return false;
    }
    if (cell.isCounted || !(cell.start.counts || cell.extreme.counts))
        return false;
    cell.isCounted = true;
    return true;
}

void CVisFlashCounter::Add(
    const CVisFlashGrid& grid, const std::vector<CVisFlashCell>& cells, int64_t time)
{
    m_time = time;
    std::erase_if(m_transitions, [&](const Transition& transition) {
        return time - transition.time >= CVisFlashMeter::second;
    });
    if (m_cells.size() != cells.size()) {
        m_cells.assign(cells.size(), Cell());
        for (size_t i = 0; i < cells.size(); ++i)
            m_cells[i].start = m_cells[i].extreme = StateOf(cells[i]);
        return;
    }

    const auto isConcurrent
        = [&](int64_t earlier) { return time - earlier < CVisFlashMeter::concurrency; };
    const bool isOpen = m_current > 0 && isConcurrent(m_currentTime);
    int64_t pendingArea = 0;
    for (size_t i = 0; i < cells.size(); ++i) {
        Cell& cell = m_cells[i];
        if (Step(cell, StateOf(cells[i]))) {
            if (isOpen && cell.transition != m_current) {
                cell.transition = m_current;
                cell.isPending = false;
                m_currentArea += grid.CellArea(i);
            } else {
                cell.isPending = true;
                cell.pendingTime = time;
            }
        }
        cell.isPending = cell.isPending && isConcurrent(cell.pendingTime);
        if (cell.isPending)
            pendingArea += grid.CellArea(i);
    }
    const auto percentOf
        = [&](int64_t area) { return static_cast<int32_t>(area * 100 / grid.Area()); };
    if (isOpen && !m_transitions.empty())
        m_transitions.back().percent = percentOf(m_currentArea);
    if (pendingArea * 4 <= grid.Area())
        return;
    ++m_current;
    m_currentTime = time;
    m_currentArea = pendingArea;
    m_transitions.push_back({ time, percentOf(pendingArea) });
    for (Cell& cell : m_cells) {
        if (cell.isPending)
            cell.transition = m_current;
        cell.isPending = false;
    }
}
