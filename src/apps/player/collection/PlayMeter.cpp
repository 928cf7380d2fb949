#include "apps/player/collection/PlayMeter.h"

#include <algorithm>
#include <utility>

namespace pxvis::player {

void PlayMeter::Start(qint64 position, qint64 now)
{
    *this = {};
    m_position = position;
    m_time = now;
}

// Nobody hears more than the time that has passed: what the position moved beyond it was skipped.
// And after a pause more time has passed than was heard.
bool PlayMeter::Note(qint64 position, qint64 duration, qint64 now)
{
    const qint64 passed = std::clamp<qint64>(now - std::exchange(m_time, now), 0, longestStep);
    m_heard += std::clamp<qint64>(position - std::exchange(m_position, position), 0, passed);
    m_duration = duration;
    const bool isPlayed = m_heard >= enough || (duration > 0 && m_heard >= (duration + 1) / 2);
    return isPlayed && !std::exchange(m_isTold, true);
}

bool PlayMeter::NoteEnd(qint64 now)
{
    const qint64 end = m_duration > 0 ? m_duration : m_position;
    return Note(end, end, now);
}

}
