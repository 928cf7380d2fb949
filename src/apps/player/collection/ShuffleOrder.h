#pragma once

#include <QList>

namespace pxvis::player {

// Which row of a list follows which when they come in a random order, round after round: in each,
// every row has its turn before one comes again. Rows that come, go or move leave the order of the
// others as it is. One thread at a time; all rows given are within the list.
class ShuffleOrder
{
public:
    // A new round over that many rows, which `current` (-1: none) is the first of. What was before
    // is forgotten.
    void Start(int count, int current);

    // `current` is the row that is left, -1 for none. The previous one is gone back to; any other,
    // once all have had their turn, begins a new round.
    void Take(int row, int current);

    // -1 at the end of a round, unless the next one is to begin.
    int Next(int current, bool nextRound) const;
    int Previous(int current) const; // -1: none

    // `count` rows stand before what was `row`; each gets its turn in this round.
    void Insert(int row, int count);
    // For each old row the new one, or -1 if it's gone.
    void Renumber(const QList<int>& newRows);

private:
    int FirstOfNextRound(int current) const;

    static constexpr int mostPast = 10'000;

    int m_count = 0;
    QList<int> m_past; // the latest last; some may come several times
    QList<int> m_ahead; // the rest of this round, the next one last
    mutable int m_nextRound = -1; // the row that the next round begins with, once somebody asked
};

}
