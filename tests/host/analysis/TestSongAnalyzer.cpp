#include "host/analysis/SongAnalyzer.h"
#include "host/analysis/Synthesizer.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cstring>
#include <limits>

using namespace pxvis::host;

namespace {

// Sample i is (i + 1) % 251 / 128 on the left and its negative on the right: bytes tell positions.
class Counter : public SampleSource
{
public:
    explicit Counter(int64_t frames)
        : m_frames(frames)
    {
    }

    static int Value(int64_t position)
    {
        return position < 0 ? 0 : static_cast<int>((position + 1) % 101);
    }

    size_t Read(float* interleaved, size_t frames) override
    {
        const auto count = std::min(static_cast<int64_t>(frames), m_frames - m_position);
        for (int64_t i = 0; i < count; ++i) {
            const auto value = static_cast<float>(Value(m_position++)) / 128;
            *interleaved++ = value;
            *interleaved++ = -value;
        }
        return static_cast<size_t>(count);
    }

    int64_t Position() const { return m_position; }

private:
    int64_t m_frames;
    int64_t m_position = 0;
};

std::vector<AudioRecord> AnalyzeAll(SampleSource& source, const AnalysisOptions& options = {})
{
    SongAnalyzer analyzer(source, options);
    std::vector<AudioRecord> records(1);
    while (analyzer.Next(records.back()))
        records.emplace_back();
    records.pop_back();
    return records;
}

bool Same(const AudioRecord& a, const AudioRecord& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

Synthesizer Song()
{
    Synthesizer song(8);
    for (int beat = 0; beat < 16; ++beat) {
        song.Kick(beat * 0.5);
        song.Hat(beat * 0.5 + 0.25);
        song.Tone(beat * 0.5, 0.4, 110 + 10 * beat, 0.2);
    }
    return song;
}

}

TEST_CASE(
    "Each step's waveform ends at the sample that is heard then, with silence before the song")
{
    struct Rate
    {
        uint32_t numerator, denominator;
    };

    for (const Rate rate :
        { Rate { 60, 1 }, Rate { 24000, 1001 }, Rate { 7, 3 }, Rate { 1000, 1 } }) {
        Counter source(60000);
        AnalysisOptions options;
        options.stepNumerator = rate.numerator;
        options.stepDenominator = rate.denominator;
        const std::vector<AudioRecord> records = AnalyzeAll(source, options);
        int64_t faults = 0;
        for (size_t step = 0; step < records.size(); ++step) {
            const auto end = static_cast<int64_t>(step * 44100 * rate.denominator / rate.numerator);
            for (int i = 0; i < 1024; ++i) {
                const int value = Counter::Value(end - 1024 + i);
                faults += records[step].block.waveform[0][i] != value;
                faults += records[step].block.waveform[1][i] != -value;
            }
            faults += records[step].change != (step == 0);
        }
        CHECK(faults == 0);
        // Every step before the end of the song and none behind it.
        const auto next
            = static_cast<int64_t>(records.size() * 44100 * rate.denominator / rate.numerator);
        CHECK(next >= 60000);
        CHECK(next - 44100 * rate.denominator / rate.numerator < 60000);
    }
}

TEST_CASE("A song of one second has sixty records, and no song has none")
{
    Counter second(44100);
    CHECK(AnalyzeAll(second).size() == 60);
    Counter longer(44101);
    CHECK(AnalyzeAll(longer).size() == 61);
    Counter nothing(0);
    CHECK(AnalyzeAll(nothing).empty());
}

TEST_CASE("The song is read a bounded stretch ahead")
{
    Counter source(44100 * 20);
    SongAnalyzer analyzer(source);
    AudioRecord record;
    int64_t furthest = 0;
    while (analyzer.Next(record))
        furthest = std::max(furthest, source.Position() - analyzer.SamplePosition());
    CHECK(furthest < 44100 / 4);
}

TEST_CASE("The records of a part are those of the whole song")
{
    Synthesizer song = Song();
    const std::vector<AudioRecord> whole = AnalyzeAll(song);
    song.Rewind();
    AnalysisOptions options;
    options.from = 5;
    const std::vector<AudioRecord> part = AnalyzeAll(song, options);
    REQUIRE(part.size() == whole.size() - 300);
    CHECK(part[0].change == 1);
    int different = 0;
    for (size_t i = 1; i < part.size(); ++i)
        different += !Same(part[i], whole[300 + i]);
    CHECK(different == 0);

    song.Rewind();
    options.from = 1e300;
    CHECK(AnalyzeAll(song, options).empty());
    song.Rewind();
    options.from = std::numeric_limits<double>::quiet_NaN();
    CHECK(AnalyzeAll(song, options).size() == whole.size());
}

TEST_CASE("Samples that are no numbers or far too loud do no harm")
{
    Synthesizer song = Song();
    const std::vector<AudioRecord> clean = AnalyzeAll(song);
    for (size_t i = 44100; i < 44200; i += 4) {
        song.Samples()[i] = std::numeric_limits<float>::quiet_NaN();
        song.Samples()[i + 1] = std::numeric_limits<float>::infinity();
        song.Samples()[i + 2] = -1e30f;
        song.Samples()[i + 3] = 1e30f;
    }
    song.Rewind();
    const std::vector<AudioRecord> dirty = AnalyzeAll(song);
    REQUIRE(dirty.size() == clean.size());
    // A tenth of a second later the spectrum has forgotten them.
    int different = 0;
    for (size_t step = 40; step < clean.size(); ++step)
        different
            += std::memcmp(&clean[step].block, &dirty[step].block, sizeof clean[step].block) != 0;
    CHECK(different == 0);
    CHECK(dirty[31].block.waveform[0][1023] <= 127);
}

TEST_CASE("Beats and impacts also come to a live host, which hears nothing ahead")
{
    Synthesizer song(20);
    for (int beat = 0; beat < 40; ++beat)
        song.Kick(beat * 0.5);
    AnalysisOptions options;
    options.lookAhead = 0;
    const std::vector<AudioRecord> records = AnalyzeAll(song, options);
    int onTime = 0;
    int beats = 0;
    int impacts = 0;
    for (size_t step = 300; step < records.size(); ++step) {
        beats += records[step].beat != 0;
        onTime += records[step].beat != 0 && (step % 30 <= 1 || step % 30 == 29);
        // A hit is known 50 ms behind its attack.
        impacts += records[step].level > 100 && step % 30 <= 4;
    }
    CHECK(beats == 30);
    CHECK(onTime == 30);
    CHECK(impacts == 30);
}
