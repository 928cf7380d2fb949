#pragma once

#include "engine2d/CVisFlashGrid.h"

#include <cstdint>
#include <vector>

enum class CVisFlashKind
{
    General,
    Red,
};

// Counts the flashes of one kind in pictures that a CVisFlashGrid has measured; CVisFlashMeter
// tells what counts. A copy goes on on its own.
class CVisFlashCounter
{
public:
    explicit CVisFlashCounter(CVisFlashKind kind)
        : m_kind(kind)
    {
    }

    // Forgets the cells, and keeps what was counted so far.
    void Restart();

    // The cells are the grid's, time is not before the last one.
    void Add(const CVisFlashGrid& grid, const std::vector<CVisFlashCell>& cells, int64_t time);

    // Of the second that ends with the last picture.
    int32_t TransitionCount() const { return static_cast<int32_t>(m_transitions.size()); }

    int64_t FirstTime() const { return m_transitions.empty() ? m_time : m_transitions[0].time; }

    int64_t LastTime() const { return m_transitions.empty() ? m_time : m_transitions.back().time; }

    // Percent of the picture, the largest of that second.
    int32_t LargestArea() const;

private:
    // What a picture's cell is for the kind of flash.
    struct State
    {
        int32_t value = 0; // of CVisFlashGrid::full
        bool counts = false; // a change from or to it may be one of a flash
    };

    // A cell's way up or down since its last turn.
    struct Cell
    {
        State start;
        State extreme;
        int32_t direction = 0; // 1 up, -1 down; 0: start is the lowest, extreme the highest yet
        bool isCounted = false;
        bool isPending = false; // made a transition that belongs to none of the picture's yet
        int64_t pendingTime = 0;
        uint64_t transition = 0; // the last of the picture's that it belongs to
    };

    struct Transition
    {
        int64_t time;
        int32_t percent;
    };

    State StateOf(const CVisFlashCell& cell) const;
    bool Step(Cell& cell, const State& state) const;
    bool IsChange(int64_t difference) const;

    CVisFlashKind m_kind;
    int64_t m_time = 0;
    std::vector<Cell> m_cells;
    std::vector<Transition> m_transitions; // of the last second
    uint64_t m_current = 0; // number of the last one; 0: none
    int64_t m_currentTime = 0;
    int64_t m_currentArea = 0; // pixels
};
