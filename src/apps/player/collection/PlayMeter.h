#pragma once

#include <QtGlobal>

namespace pxvis::player {

// Whether a song was played: half of it, or four minutes, was heard, whatever was skipped. Counts
// the time for which its position moved; all times are in ms. User-interface thread.
class PlayMeter
{
public:
    static constexpr qint64 enough = 240'000;
    static constexpr qint64 longestStep = 2000; // between two calls while it plays

    // Another song, or the same once more. `now` is of any steady clock.
    void Start(qint64 position, qint64 now);

    // To be called some times a second while it plays; `duration` below 0 is unknown. True once, as
    // soon as it counts as played.
    bool Note(qint64 position, qint64 duration, qint64 now);

    // The same for a song that ended by itself.
    bool NoteEnd(qint64 now);

private:
    qint64 m_position = 0;
    qint64 m_duration = -1;
    qint64 m_time = 0; // of the last call
    qint64 m_heard = 0;
    bool m_isTold = false;
};

}
