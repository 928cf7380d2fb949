#include "host/analysis/AnalysisAhead.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

using namespace pxvis::host;

namespace {

constexpr int64_t seconds = 4;

class Tone final : public SampleSource
{
public:
    size_t Read(float* interleaved, size_t frames) override
    {
        const size_t count = std::min(frames, m_left);
        m_left -= count;
        for (size_t i = 0; i < 2 * count; ++i)
            interleaved[i] = static_cast<float>(std::sin(m_phase += 0.03));
        return count;
    }

    std::string Error() const override { return {}; }

private:
    size_t m_left = static_cast<size_t>(seconds * SampleRate);
    double m_phase = 0;
};

}

TEST_CASE("Analysis that runs ahead gives the records and the sound of analysis in step")
{
    for (const int64_t from : { 0, 1 }) {
        for (const int64_t to : { seconds, int64_t { 3 }, from }) {
            Tone song;
            Tone same;
            AnalysisOptions options;
            options.from = static_cast<double>(from);
            SongAnalyzer inStep(same, options);
            AnalysisAhead ahead(song, options, from * SampleRate, to * SampleRate);
            size_t sound = 0;
            const AnalysisAhead::Step* step = &ahead.Next();
            for (int count = 0; !step->isEnd; step = &ahead.Next(), ++count) {
                AudioRecord record;
                REQUIRE(inStep.Next(record));
                CHECK(step->samplePosition == inStep.SamplePosition());
                CHECK(step->record.level == record.level);
                CHECK(std::equal(std::begin(record.block.waveform[0]),
                    std::end(record.block.waveform[0]), step->record.block.waveform[0]));
                sound += step->sound.size() / 2;
                if (count % 50 == 0) // the other side comes to its bound
                    std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
            sound += step->sound.size() / 2;
            CHECK(sound == static_cast<size_t>((to - from) * SampleRate));
            CHECK(ahead.Next().isEnd);
            AudioRecord record;
            CHECK_FALSE(inStep.Next(record));
        }
    }
}

TEST_CASE("Analysis that runs ahead may be given up at any step, and before the first")
{
    for (int taken = 0; taken < 40; ++taken) {
        Tone song;
        AnalysisAhead ahead(song, {}, 0, SampleRate);
        for (int i = 0; i < taken; ++i)
            CHECK_FALSE(ahead.Next().isEnd);
    }
}
