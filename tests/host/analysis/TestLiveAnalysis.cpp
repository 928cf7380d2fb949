#include "host/analysis/LiveAnalysis.h"
#include "host/analysis/SongAnalyzer.h"
#include "host/analysis/Synthesizer.h"

#include <doctest/doctest.h>

#include <cstring>
#include <limits>

using namespace pxvis::host;

namespace {

constexpr int64_t Second = 1'000'000'000;
constexpr int64_t Millisecond = Second / 1000;

// A song that a streaming thread hands over in blocks.
class Stream
{
public:
    Stream(LiveAnalysis& analysis, const std::vector<float>& samples, int64_t start = 0)
        : m_analysis(analysis)
        , m_samples(samples)
        , m_start(start)
    {
    }

    // Everything that is heard before `time`.
    void PushUntil(int64_t time)
    {
        constexpr size_t block = 441;
        while (m_pushed + block <= m_samples.size() / 2 && TimeOf(m_pushed + block) <= time) {
            m_analysis.Push(&m_samples[2 * m_pushed], block, TimeOf(m_pushed));
            m_pushed += block;
        }
    }

private:
    int64_t TimeOf(size_t frame) const
    {
        return m_start + static_cast<int64_t>(frame) * Second / SampleRate;
    }

    LiveAnalysis& m_analysis;
    const std::vector<float>& m_samples;
    int64_t m_start;
    size_t m_pushed = 0;
};

std::vector<float> Kicks(double seconds)
{
    Synthesizer song(seconds);
    for (double at = 0.5; at < seconds; at += 0.5)
        song.Kick(at);
    return song.Samples();
}

bool Same(const AudioRecord& a, const AudioRecord& b)
{
    return std::memcmp(&a.block, &b.block, sizeof a.block) == 0 && a.level == b.level
        && a.beat == b.beat;
}

// The first one starts the analysis; then a little more, which rounds to the same step.
int64_t TimeOfStep(int64_t step)
{
    return step == 0 ? 0 : step * Second / 60 + Millisecond;
}

}

TEST_CASE("Taken step by step, the records are those of the song, also five seconds late")
{
    for (const size_t lookAhead : { size_t { 6615 }, size_t { 0 } }) {
        Synthesizer song(6);
        song.Samples() = Kicks(6);
        AnalysisOptions options;
        options.lookAhead = lookAhead;
        SongAnalyzer analyzer(song, options);
        LiveAnalysis live(lookAhead);
        Stream stream(live, song.Samples(), 70 * Second);
        int different = 0;
        for (int step = 0; step < 300; ++step) {
            const int64_t now = 70 * Second + TimeOfStep(step);
            stream.PushUntil(now + (lookAhead > 0 ? 6400 : 400) * Millisecond);
            AudioRecord expected, record;
            analyzer.Next(expected);
            CHECK(live.Take(now, record));
            different += !Same(record, expected);
        }
        CHECK(different == 0);
    }
}

TEST_CASE("Hits and beats come on time to slow and fast displays, once each")
{
    const std::vector<float> samples = Kicks(20);
    for (const int rate : { 24, 60, 144 }) {
        for (const bool hearsAhead : { true, false }) {
            CAPTURE(rate);
            CAPTURE(hearsAhead);
            LiveAnalysis live(hearsAhead ? 6615 : 0);
            Stream stream(live, samples);
            int hits = 0, beats = 0, hitsOnTime = 0, beatsOnTime = 0;
            for (int frame = 0; frame < 19 * rate; ++frame) {
                const int64_t now = frame * Second / rate;
                stream.PushUntil(now + (hearsAhead ? Second : 0));
                AudioRecord record;
                live.Take(now, record);
                if (now < 10 * Second)
                    continue;
                // Since the kick, or before it.
                const int64_t late = (now + Second / 4) % (Second / 2) - Second / 4;
                const int64_t latest = Second / rate + (hearsAhead ? 9 : 70) * Millisecond;
                hits += record.level > 100;
                hitsOnTime += record.level > 100 && late >= -9 * Millisecond && late <= latest;
                beats += record.beat;
                beatsOnTime
                    += record.beat != 0 && std::abs(late) <= 50 * Millisecond + Second / rate;
            }
            CHECK(hits == 18);
            CHECK(hitsOnTime == 18);
            CHECK(beats == 18);
            CHECK(beatsOnTime == 18);
        }
    }
}

TEST_CASE("After a pause of the display or a jump in time the picture is that of now")
{
    Synthesizer song(12);
    for (int second = 0; second < 12; ++second)
        song.Tone(second, 1, 100 << (second % 5), 0.3);
    LiveAnalysis live(0);
    Stream stream(live, song.Samples());
    AnalysisOptions options;
    options.from = 5.5;
    SongAnalyzer analyzer(song, options);
    AudioRecord expected, record;
    analyzer.Next(expected);

    stream.PushUntil(Second);
    CHECK(live.Take(Second, record));
    stream.PushUntil(5500 * Millisecond + 20 * Millisecond);
    CHECK(live.Take(5500 * Millisecond, record));
    CHECK(std::memcmp(&record.block, &expected.block, sizeof record.block) == 0);
    CHECK(live.Take(3 * Second, record)); // a delay was set
    CHECK(std::memcmp(&record.block, &expected.block, sizeof record.block) != 0);
    CHECK(live.Take(5500 * Millisecond, record));
    CHECK(std::memcmp(&record.block, &expected.block, sizeof record.block) == 0);

    // What was flushed isn't shown, and the same sound elsewhere in time is.
    live.Flush();
    CHECK_FALSE(live.Take(5600 * Millisecond, record));
    Stream again(live, song.Samples(), 100 * Second);
    again.PushUntil(101 * Second);
    CHECK(live.Take(100 * Second + 500 * Millisecond, record));
    CHECK(record.block.waveform[0][1023] != 0);
    Stream jump(live, song.Samples(), 300 * Second);
    jump.PushUntil(301 * Second);
    CHECK(live.Take(299 * Second, record)); // not heard yet
    CHECK(record.block.waveform[0][1023] == 0);
    CHECK(live.Take(300 * Second + 500 * Millisecond, record));
    CHECK(record.block.waveform[0][1023] != 0);
}

TEST_CASE(
    "The pictures rest after five seconds of silence, and when nothing comes, until there is sound")
{
    Synthesizer song(20);
    song.Tone(0, 1, 440, 0.5);
    song.NoiseFloor(5e-5); // a converter's last bit
    song.Kick(12);
    LiveAnalysis live(0);
    AudioRecord record;
    CHECK_FALSE(live.Take(0, record));
    Stream stream(live, song.Samples());
    bool hit = false;
    for (int64_t now = 20 * Millisecond; now < 16 * Second; now += 10 * Millisecond) {
        stream.PushUntil(now);
        const bool isAwake = live.Take(now, record);
        CHECK(isAwake == (now < 6 * Second || now > 12 * Second));
        hit |= isAwake && now > 12 * Second && record.level > 100;
    }
    CHECK(hit);
    CHECK(live.Take(16200 * Millisecond, record));
    CHECK_FALSE(live.Take(17 * Second, record));
}

TEST_CASE("Times of a clock that trembles and drifts keep the stream whole; absurd ones do no harm")
{
    const std::vector<float> samples = Kicks(10);
    LiveAnalysis live(0);
    AudioRecord record;
    int hits = 0;
    for (int64_t block = 0; block < 1000; ++block) {
        const int64_t now = block * (10 * Millisecond + 4000); // 400 ppm
        live.Push(&samples[static_cast<size_t>(2 * 441 * block)], 441,
            now + (block % 3 - 1) * 5 * Millisecond);
        CHECK(live.Take(now, record));
        hits += record.level > 100;
    }
    CHECK(hits == 19);

    live.AnnounceSong();
    CHECK(live.Take(10 * Second, record));
    CHECK(record.change == 1);
    CHECK(live.Take(10 * Second, record));
    CHECK(record.change == 0);

    constexpr int64_t least = std::numeric_limits<int64_t>::min();
    constexpr int64_t most = std::numeric_limits<int64_t>::max();
    const std::vector<float> broken(
        size_t { 2 * 10 } * SampleRate, std::numeric_limits<float>::quiet_NaN());
    for (const int64_t time : { most, least, int64_t { 0 }, most }) {
        live.Push(broken.data(), broken.size() / 2, time);
        for (const int64_t now : { most, least, int64_t { 5 * Second } })
            live.Take(now, record);
    }
    CHECK(record.level <= 255);
}
