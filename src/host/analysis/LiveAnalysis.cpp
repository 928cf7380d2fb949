#include "host/analysis/LiveAnalysis.h"

#include "host/analysis/SongAnalyzer.h"

#include <algorithm>

namespace pxvis::host {

namespace {

constexpr int StepsPerSecond = 60;
constexpr int64_t StepLength = SampleRate / StepsPerSecond;
static_assert(SampleRate % StepsPerSecond == 0);

constexpr int64_t WarmUp = SampleRate / 2;
constexpr int64_t MostCatchUp = SampleRate;
constexpr int64_t MostStepBack = SampleRate / 4; // the clock and its estimates tremble
constexpr int64_t Starved = SampleRate / 2; // nothing came for so long: it has stopped

}

// The kept samples from one position on, without an end.
class LiveAnalysis::Source final : public SampleSource
{
public:
    Source(LiveAnalysis& owner, int64_t position)
        : m_owner(owner)
        , m_position(position)
    {
    }

    size_t Read(float* interleaved, size_t frames) override
    {
        const std::lock_guard lock(m_owner.m_mutex);
        m_owner.m_ring.Copy(m_position, interleaved, frames);
        m_position += static_cast<int64_t>(frames);
        return frames;
    }

private:
    LiveAnalysis& m_owner;
    int64_t m_position;
};

LiveAnalysis::LiveAnalysis(size_t lookAhead, bool isAtRest)
    : m_lookAhead(static_cast<int64_t>(lookAhead))
    , m_ring(size_t { KeptSeconds } * SampleRate)
    , m_isAtRest(isAtRest)
{
}

LiveAnalysis::~LiveAnalysis() = default;

void LiveAnalysis::Push(const float* interleaved, size_t frames, int64_t time)
{
    const std::lock_guard lock(m_mutex);
    m_ring.Push(interleaved, frames, time);
}

void LiveAnalysis::Flush()
{
    const std::lock_guard lock(m_mutex);
    m_ring.Break();
}

void LiveAnalysis::AnnounceSong()
{
    const std::lock_guard lock(m_mutex);
    m_isNewSong = true;
}

LiveAnalysis::Heard LiveAnalysis::Look(int64_t now)
{
    const std::lock_guard lock(m_mutex);
    return { m_ring.First(), m_ring.End(), m_ring.PositionAt(now), m_ring.SoundEnd(), m_isNewSong };
}

void LiveAnalysis::StartAt(const Heard& heard, int64_t position)
{
    const int64_t warmUp = std::min(WarmUp, position - heard.first);
    AnalysisOptions options;
    options.stepNumerator = StepsPerSecond;
    options.from = (static_cast<double>(warmUp) + 0.5) / SampleRate; // half a sample: rounds down
    options.lookAhead = static_cast<size_t>(m_lookAhead);
    options.readBlock = 1;
    m_source = std::make_unique<Source>(*this, position - warmUp);
    m_analyzer = std::make_unique<SongAnalyzer>(*m_source, options);
    m_nextStep = position;
    m_newest = {};
}

void LiveAnalysis::Step(AudioRecord& record)
{
    const int32_t beat = record.beat;
    const int32_t level = record.level;
    m_analyzer->Next(m_newest);
    m_nextStep += StepLength;
    record = m_newest;
    record.beat |= beat;
    record.level = std::max(level, record.level);
}

bool LiveAnalysis::Take(int64_t now, AudioRecord& record)
{
    record = {};
    const Heard heard = Look(now);
    m_isAtRest = m_isAtRest && heard.soundEnd == 0;
    const bool isSilent
        = m_isAtRest || heard.position - heard.soundEnd > int64_t { RestSeconds } * SampleRate;
    if (heard.first == heard.end || isSilent || heard.position - heard.end > Starved) {
        m_analyzer.reset();
        return false;
    }

    // The furthest step for which everything is there that the detectors hear.
    const int64_t newest = std::min(heard.position, heard.end - std::max<int64_t>(m_lookAhead, 1));
    const int64_t start = std::max(newest, heard.first);
    const bool goesOn = m_analyzer && m_nextStep >= heard.first && start - m_nextStep <= MostCatchUp
        && m_nextStep - start <= MostStepBack;
    if (!goesOn)
        StartAt(heard, start);

    record = m_newest;
    // Told before; a hit is over.
    record.beat = 0;
    record.level = std::min(record.level, 100);
    if (m_nextStep <= newest)
        record.level = 0;
    while (m_nextStep <= newest)
        Step(record);
    record.change = heard.isNewSong;
    if (heard.isNewSong) {
        const std::lock_guard lock(m_mutex);
        m_isNewSong = false;
    }
    return true;
}

}
