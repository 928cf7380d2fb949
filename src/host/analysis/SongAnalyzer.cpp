#include "host/analysis/SongAnalyzer.h"

#include <algorithm>
#include <cmath>

namespace pxvis::host {

namespace {

constexpr size_t WaveformSize = 1024;
constexpr float LevelDecay = 0.85f; // a step; what an impact leaves behind

// A file of float samples can hold anything.
float Finite(float sample)
{
    return std::isfinite(sample) ? std::clamp(sample, -8.0f, 8.0f) : 0.0f;
}

int64_t PositionOfTime(double seconds)
{
    constexpr double furthest = 1e9;
    return seconds > 0 ? static_cast<int64_t>(std::floor(std::min(seconds, furthest) * SampleRate))
                       : 0;
}

int8_t ToSignedByte(float sample)
{
    return static_cast<int8_t>(std::floor(std::clamp(sample * 128 + 0.5f, -128.0f, 127.0f)));
}

}

SongAnalyzer::SongAnalyzer(SampleSource& source, const AnalysisOptions& options)
    : m_source(source)
    , m_options(options)
    , m_firstPosition(PositionOfTime(options.from))
    , m_samples(2 * SpectrumAnalysis::WindowSize)
    , m_samplesStart(-static_cast<int64_t>(SpectrumAnalysis::WindowSize))
{
    const double steps = static_cast<double>(m_firstPosition) / SampleRate * options.stepNumerator
        / options.stepDenominator;
    m_step = -static_cast<int64_t>(std::ceil(steps));
}

int64_t SongAnalyzer::PositionOfStep(int64_t step) const
{
    // Whole periods apart, so that the product stays in 64 bits for any length of song.
    const int64_t n = m_options.stepNumerator;
    const int64_t samplesTimesN = int64_t { SampleRate } * m_options.stepDenominator;
    const int64_t period = step >= 0 ? step / n : -((n - 1 - step) / n);
    return m_firstPosition + period * samplesTimesN + (step - period * n) * samplesTimesN / n;
}

int64_t SongAnalyzer::MiddleAfterStep(int64_t step) const
{
    const int64_t position = PositionOfStep(step);
    return position + (PositionOfStep(step + 1) - position) / 2;
}

bool SongAnalyzer::EndsBefore(int64_t position) const
{
    return m_songEnd >= 0 && position >= m_songEnd;
}

// Makes [.., end) available; behind the song's end comes silence.
void SongAnalyzer::ReadUntil(int64_t end)
{
    for (;;) {
        const size_t filled = m_samples.size() / 2;
        const int64_t available = m_samplesStart + static_cast<int64_t>(filled);
        if (available >= end)
            return;
        const size_t wanted = std::max(m_options.readBlock, static_cast<size_t>(end - available));
        m_samples.resize(2 * (filled + wanted));
        float* block = &m_samples[2 * filled];
        const size_t count = m_songEnd < 0 ? m_source.Read(block, wanted) : 0;
        if (count < wanted && m_songEnd < 0)
            m_songEnd = available + static_cast<int64_t>(count);
        std::transform(block, block + 2 * count, block, Finite);
        std::fill(block + 2 * count, block + 2 * wanted, 0.0f);
    }
}

void SongAnalyzer::HearUntil(int64_t end)
{
    for (; m_heard + static_cast<int64_t>(OnsetSpectrum::Hop) <= end;
         m_heard += OnsetSpectrum::Hop) {
        if (EndsBefore(m_position))
            return;
        ReadUntil(m_heard + static_cast<int64_t>(OnsetSpectrum::Hop));
        const OnsetFrame frame = m_onset.Push(&m_samples[2 * (m_heard - m_samplesStart)]);
        const int64_t frameEnd = m_heard + static_cast<int64_t>(OnsetSpectrum::Hop);
        HearImpact(frame, frameEnd);
        m_beat.Push(frame);
        DropBefore(std::min(frameEnd, m_position - int64_t { SpectrumAnalysis::WindowSize }));
    }
}

void SongAnalyzer::HearImpact(const OnsetFrame& frame, int64_t frameEnd)
{
    const ImpactDetector::Result result = m_impact.Push(frame);
    m_levels.push_back({ frameEnd - OnsetSpectrum::AttackDelay, result.level });
    if (result.hit > 0) {
        const size_t back = std::min(result.hitHopsAgo, m_levels.size() - 1);
        m_levels[m_levels.size() - 1 - back].level = result.hit;
    }
}

void SongAnalyzer::DropBefore(int64_t first)
{
    // In large pieces, since each drop moves the rest.
    constexpr int64_t piece = 16384;
    if (first - m_samplesStart < piece)
        return;
    m_samples.erase(m_samples.begin(), m_samples.begin() + 2 * (first - m_samplesStart));
    m_samplesStart = first;
}

// Of the attacks that no step has had yet. With no look-ahead they become known late and count
// then.
int32_t SongAnalyzer::LevelUntil(int64_t end)
{
    float level = 0;
    size_t taken = 0;
    for (; taken < m_levels.size() && m_levels[taken].position < end; ++taken)
        level = std::max(level, m_levels[taken].level);
    m_levels.erase(m_levels.begin(), m_levels.begin() + static_cast<int64_t>(taken));
    m_heldLevel = std::max(level, std::min(100.0f, m_heldLevel * LevelDecay));
    return static_cast<int32_t>(m_heldLevel);
}

// A beat that the tracker moves into the past is left out rather than late, and one that it moves
// to just behind the last one is the last one.
int32_t SongAnalyzer::BeatBetween(int64_t begin, int64_t end)
{
    const BeatTracker::Prediction prediction = m_beat.Predict();
    if (!prediction.beats)
        return 0;
    const int64_t period = prediction.period;
    const int64_t earliest = std::max(begin, m_lastBeat + period * 6 / 10);
    // The first of the predicted beats that isn't before `earliest`.
    const int64_t phase = (earliest - prediction.beat) % period;
    const int64_t beat = phase > 0 ? earliest + period - phase : earliest - phase;
    if (beat >= end)
        return 0;
    m_lastBeat = beat;
    return 1;
}

void SongAnalyzer::FillBlock(VisAudioBlock& block)
{
    const float* const newest = &m_samples[2 * (m_position - m_samplesStart)];
    float window[SpectrumAnalysis::WindowSize];
    for (int channel = 0; channel < 2; ++channel) {
        const float* const waveform = newest - 2 * WaveformSize + channel;
        for (size_t i = 0; i < WaveformSize; ++i)
            block.waveform[channel][i] = ToSignedByte(waveform[2 * i]);
        const float* const samples = newest - 2 * SpectrumAnalysis::WindowSize + channel;
        for (size_t i = 0; i < SpectrumAnalysis::WindowSize; ++i)
            window[i] = samples[2 * i];
        m_spectrum.Analyze(window, block.spectrum[channel]);
    }
}

bool SongAnalyzer::Next(AudioRecord& record)
{
    record = {};
    // The steps before the first one count for the detectors only.
    for (;; ++m_step) {
        m_position = PositionOfStep(m_step);
        HearUntil(m_position + static_cast<int64_t>(m_options.lookAhead));
        if (!EndsBefore(m_position))
            ReadUntil(m_position + 1);
        if (EndsBefore(m_position))
            return false;
        // A hit and a beat belong to the nearest step.
        const int64_t end = MiddleAfterStep(m_step);
        record.level = LevelUntil(end);
        record.beat = BeatBetween(MiddleAfterStep(m_step - 1), end);
        if (m_step >= 0)
            break;
    }
    FillBlock(record.block);
    record.change = m_step == 0;
    ++m_step;
    return true;
}

}
