#pragma once

#include "host/analysis/SongAnalyzer.h"
#include "os/Thread.h"

#include <array>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace pxvis::host {

// Analyses a song on a thread of its own, some steps ahead of the one that draws them: decoding,
// analysis, drawing and encoding are then under way at the same time. Next is for one thread.
class AnalysisAhead
{
public:
    struct Step
    {
        AudioRecord record;
        int64_t samplePosition = 0;
        std::vector<float> sound; // interleaved pairs that were read for it and are asked for
        bool isEnd = false; // no step any more, but the last of the sound
        bool isOutOfMemory = false; // an end before the song's
    };

    // Sound is asked for from sample `from` up to `to`; nowhere, if they are equal. The song must
    // outlive it; nobody else may touch the song until Next has given the end.
    AnalysisAhead(SampleSource& song, const AnalysisOptions& options, int64_t from, int64_t to);
    ~AnalysisAhead(); // waits for a read of the song that is under way
    AnalysisAhead(const AnalysisAhead&) = delete;
    AnalysisAhead& operator=(const AnalysisAhead&) = delete;

    // Good until the next call. The first one starts the thread. Behind the end there is only that.
    const Step& Next();

private:
    class SoundTap;

    static constexpr size_t mostSteps = 16;

    void Run() noexcept;
    bool Produce(Step& step) noexcept;

    SampleSource& m_song;
    AnalysisOptions m_options;
    size_t m_mostAhead; // steps; fewer where each is long
    int64_t m_from;
    int64_t m_to;

    std::mutex m_mutex; // of what follows up to the steps
    std::condition_variable m_changed;
    size_t m_produced = 0; // steps so far
    size_t m_taken = 0; // those before the one that the drawing side has
    bool m_stop = false;

    std::array<Step, mostSteps> m_steps; // by their number; those produced and not taken are Next's
    std::unique_ptr<SoundTap> m_tap;
    std::optional<SongAnalyzer> m_analyzer; // the thread's
    os::Thread m_thread;
    bool m_isStarted = false;
};

}
