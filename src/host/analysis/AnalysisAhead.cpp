#include "host/analysis/AnalysisAhead.h"

#include <algorithm>
#include <new>

namespace pxvis::host {

// Hands the song on to the analysis, which hears ahead, and keeps the part that is asked for.
class AnalysisAhead::SoundTap final : public SampleSource
{
public:
    SoundTap(SampleSource& song, int64_t from, int64_t to)
        : m_song(song)
        , m_from(from)
        , m_to(to)
    {
    }

    size_t Read(float* interleaved, size_t frames) override
    {
        const size_t got = m_song.Read(interleaved, frames);
        const int64_t count = static_cast<int64_t>(got);
        const int64_t first = std::clamp<int64_t>(m_from - m_position, 0, count);
        const int64_t last = std::clamp<int64_t>(m_to - m_position, 0, count);
        m_position += count;
        m_kept->insert(
            m_kept->end(), interleaved + first * 2, interleaved + std::max(first, last) * 2);
        return got;
    }

    std::string Error() const override { return m_song.Error(); }

    void KeepIn(std::vector<float>& sound) { m_kept = &sound; }

private:
    SampleSource& m_song;
    int64_t m_from; // samples
    int64_t m_to;
    int64_t m_position = 0;
    std::vector<float>* m_kept = nullptr;
};

AnalysisAhead::AnalysisAhead(
    SampleSource& song, const AnalysisOptions& options, int64_t from, int64_t to)
    : m_song(song)
    , m_options(options)
    , m_mostAhead(std::clamp<size_t>(options.stepNumerator / options.stepDenominator / 4, 1,
          mostSteps)) // a quarter of a second
    , m_from(from)
    , m_to(to)
{
}

AnalysisAhead::~AnalysisAhead()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_changed.notify_all();
    m_thread.Join();
}

const AnalysisAhead::Step& AnalysisAhead::Next()
{
    if (!m_isStarted) {
        m_tap = std::make_unique<SoundTap>(m_song, m_from, m_to);
        m_analyzer.emplace(*m_tap, m_options);
        if (m_thread.Start([](void* self) { static_cast<AnalysisAhead*>(self)->Run(); }, this) != 0)
            throw std::bad_alloc(); // the system has no thread left
        m_isStarted = true;
    } else if (!m_steps[m_taken % mostSteps].isEnd) {
        const std::lock_guard lock(m_mutex);
        ++m_taken;
    }
    m_changed.notify_all();
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_produced > m_taken; });
    return m_steps[m_taken % mostSteps];
}

void AnalysisAhead::Run() noexcept
{
    for (bool goesOn = true; goesOn;) {
        {
            std::unique_lock lock(m_mutex);
            m_changed.wait(lock, [this] { return m_stop || m_produced < m_taken + m_mostAhead; });
            if (m_stop)
                return;
        }
        goesOn = Produce(m_steps[m_produced % mostSteps]);
        {
            const std::lock_guard lock(m_mutex);
            ++m_produced;
        }
        m_changed.notify_all();
    }
}

bool AnalysisAhead::Produce(Step& step) noexcept
{
    step.sound.clear();
    try {
        m_tap->KeepIn(step.sound);
        step.isEnd = !m_analyzer->Next(step.record);
        step.samplePosition = m_analyzer->SamplePosition();
    } catch (const std::bad_alloc&) {
        step.isEnd = true;
        step.isOutOfMemory = true;
    }
    return !step.isEnd;
}

}
