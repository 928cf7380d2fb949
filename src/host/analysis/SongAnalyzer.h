#pragma once

#include "host/analysis/AudioRecord.h"
#include "host/analysis/BeatTracker.h"
#include "host/analysis/ImpactDetector.h"
#include "host/analysis/OnsetSpectrum.h"
#include "host/analysis/SampleSource.h"
#include "host/analysis/SpectrumAnalysis.h"

#include <cstdint>
#include <vector>

namespace pxvis::host {

struct AnalysisOptions
{
    // Steps a second, numerator / denominator; each 1 to 1,000,000.
    uint32_t stepNumerator = 60;
    uint32_t stepDenominator = 1;

    // Song time of the first step in seconds. The detectors hear the song from its beginning all
    // the same, so that the records of a part are those of the whole.
    double from = 0;

    // How far the detectors hear ahead of the step, in samples. 0 suits a live source.
    size_t lookAhead = 6615; // 150 ms

    // Pairs that the source is asked for at once, at least. 1: never more than a step needs, which
    // is what lies before it and its look-ahead, and one pair.
    size_t readBlock = 4096;
};

// Turns a song into one record a step. The song is read as it goes; memory does not grow with it.
class SongAnalyzer
{
public:
    // The source must outlive the analyzer.
    explicit SongAnalyzer(SampleSource& source, const AnalysisOptions& options = {});

    // The next step's record; false when the song is over at the step's time. Step k is at sample
    // first + floor(k * SampleRate * denominator / numerator), and its pictures end before it.
    bool Next(AudioRecord& record);

    // The current step's place in the song; meaningful once Next was called.
    int64_t SamplePosition() const { return m_position; }

private:
    int64_t PositionOfStep(int64_t step) const;
    int64_t MiddleAfterStep(int64_t step) const;
    bool EndsBefore(int64_t position) const;
    void ReadUntil(int64_t end);
    void HearUntil(int64_t end);
    void HearImpact(const OnsetFrame& frame, int64_t frameEnd);
    void DropBefore(int64_t first);
    int32_t LevelUntil(int64_t end);
    int32_t BeatBetween(int64_t begin, int64_t end);
    void FillBlock(VisAudioBlock& block);

    SampleSource& m_source;
    AnalysisOptions m_options;
    int64_t m_firstPosition;
    int64_t m_step; // the next; negative before the first record
    int64_t m_position = 0;

    // Sliding window of the song, interleaved and made finite.
    std::vector<float> m_samples;
    int64_t m_samplesStart = 0; // song position of the first pair, negative for the silence before
    int64_t m_songEnd = -1; // known once the source has ended

    SpectrumAnalysis m_spectrum;
    OnsetSpectrum m_onset;
    ImpactDetector m_impact;
    BeatTracker m_beat;
    int64_t m_heard = 0; // how far the detectors have heard

    struct TimedLevel
    {
        int64_t position; // of the attack
        float level;
    };

    std::vector<TimedLevel> m_levels; // not yet given to a step
    float m_heldLevel = 0;
    int64_t m_lastBeat = INT64_MIN / 2;
};

}
