#include "apps/player/collection/ShuffleOrder.h"

#include <QRandomGenerator>

#include <algorithm>
#include <numeric>
#include <utility>

namespace pxvis::player {

namespace {

void Renumber(QList<int>& rows, const QList<int>& newRows)
{
    for (int& row : rows)
        row = newRows[row];
    rows.removeAll(-1);
}

}

void ShuffleOrder::Start(int count, int current)
{
    m_count = count;
    m_past.clear();
    m_nextRound = -1;
    m_ahead.resize(count);
    std::iota(m_ahead.begin(), m_ahead.end(), 0);
    std::shuffle(m_ahead.begin(), m_ahead.end(), *QRandomGenerator::global());
    m_ahead.removeOne(current);
}

void ShuffleOrder::Take(int row, int current)
{
    const int next = m_ahead.isEmpty() ? m_nextRound : m_ahead.last();
    if (row == Previous(current) && row != next) {
        while (m_past.takeLast() != row) { }
        if (current >= 0)
            m_ahead.append(current);
        return;
    }
    if (m_ahead.isEmpty()) {
        const QList<int> past = std::exchange(m_past, {});
        Start(m_count, row);
        m_past = past;
        if (m_ahead.size() > 1 && m_ahead.last() == current)
            m_ahead.swapItemsAt(0, m_ahead.size() - 1);
    } else if (row == next) {
        m_ahead.removeLast(); // it may have its own turn in this round besides
    } else {
        m_ahead.removeOne(row);
    }
    m_nextRound = -1;
    if (current >= 0)
        m_past.append(current);
    if (m_past.size() > mostPast)
        m_past.removeFirst();
}

// Where rounds meet, the last two of the one and the first two of the other are four, if there are
// as many: nobody wants to hear them again so soon, and the way back must not look like the way on.
int ShuffleOrder::FirstOfNextRound(int current) const
{
    QList<int> rows(m_nextRound < 0 ? m_count : 0);
    std::iota(rows.begin(), rows.end(), 0);
    for (const int row : { current, Previous(current) }) {
        if (rows.size() > 1)
            rows.removeOne(row);
    }
    if (!rows.isEmpty())
        m_nextRound = rows[QRandomGenerator::global()->bounded(rows.size())];
    return m_nextRound;
}

int ShuffleOrder::Next(int current, bool nextRound) const
{
    if (!m_ahead.isEmpty())
        return m_ahead.last();
    return nextRound ? FirstOfNextRound(current) : -1;
}

int ShuffleOrder::Previous(int current) const
{
    // Where what was between is gone, one may stand behind itself.
    const auto found = std::find_if(
        m_past.rbegin(), m_past.rend(), [current](int row) { return row != current; });
    return found == m_past.rend() ? -1 : *found;
}

void ShuffleOrder::Insert(int row, int count)
{
    QList<int> newRows(m_count);
    std::iota(newRows.begin(), newRows.end(), 0);
    std::for_each(newRows.begin() + row, newRows.end(), [count](int& newRow) { newRow += count; });
    Renumber(newRows);
    m_count += count;

    QList<int> added(count);
    std::iota(added.begin(), added.end(), row);
    QRandomGenerator* random = QRandomGenerator::global();
    std::shuffle(added.begin(), added.end(), *random);

    // Merged so that every place is as likely as any other for each of them.
    QList<int> old;
    old.swap(m_ahead);
    m_ahead.reserve(old.size() + added.size());
    while (!old.isEmpty() || !added.isEmpty()) {
        const qsizetype drawn = random->bounded(old.size() + added.size());
        QList<int>& from = drawn < old.size() ? old : added;
        m_ahead.append(from.takeLast());
    }
    std::reverse(m_ahead.begin(), m_ahead.end());
}

void ShuffleOrder::Renumber(const QList<int>& newRows)
{
    player::Renumber(m_past, newRows);
    player::Renumber(m_ahead, newRows);
    if (m_nextRound >= 0)
        m_nextRound = newRows[m_nextRound];
    m_count = static_cast<int>(newRows.size() - newRows.count(-1));
}

}
