#pragma once

#include "host/analysis/AudioRecord.h"
#include "host/analysis/SampleRing.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>

namespace pxvis::host {

class SongAnalyzer;

// The records of sound that is being heard, 60 steps a second as for a song. Whoever streams leaves
// the samples with their times, which costs a copy; all analysis happens in Take, on the thread
// that draws, so that a hidden player spends nothing on it. One lock for the samples, held for a
// copy.
class LiveAnalysis
{
public:
    static constexpr int KeptSeconds = 8; // the longest delay, and what is decoded ahead
    static constexpr int RestSeconds = 5; // of silence, until the pictures may rest

    // How far the detectors hear ahead of what is heard, in samples: they make mistakes less often,
    // and hits come on time. 0 where sound comes when it is heard; samples that come later than
    // this ahead of their time delay the records. `isAtRest`: the pictures rest until there is
    // sound.
    explicit LiveAnalysis(size_t lookAhead, bool isAtRest = false);
    ~LiveAnalysis();
    LiveAnalysis(const LiveAnalysis&) = delete;
    LiveAnalysis& operator=(const LiveAnalysis&) = delete;

    // Any thread. Pairs at SampleRate, the first of which is heard at `time` in ns, on a clock of
    // the caller's choice.
    void Push(const float* interleaved, size_t frames, int64_t time);
    void Flush(); // what is there won't be heard
    void AnnounceSong(); // the next record has `change` set

    // The record of `now` on that clock, with every beat and the highest level since the last call.
    // False while the pictures may rest: silence, or nothing comes. By one thread at a time. Who
    // has not asked for a second, or asks for another time than comes next, gets an analysis that
    // starts there: half a second of what was before is heard for the detectors.
    bool Take(int64_t now, AudioRecord& record);

private:
    class Source;

    struct Heard
    {
        int64_t first = 0; // of the samples kept
        int64_t end = 0;
        int64_t position = 0; // what is heard now
        int64_t soundEnd = 0;
        bool isNewSong = false;
    };

    Heard Look(int64_t now);
    void StartAt(const Heard& heard, int64_t position);
    void Step(AudioRecord& record);

    const int64_t m_lookAhead;

    std::mutex m_mutex; // the two below
    SampleRing m_ring;
    bool m_isNewSong = false;

    // Of the thread that draws.
    bool m_isAtRest; // since the beginning
    std::unique_ptr<Source> m_source;
    std::unique_ptr<SongAnalyzer> m_analyzer; // null: rests
    int64_t m_nextStep = 0; // position
    AudioRecord m_newest; // of the last step
};

}
