#include "host/analysis/ClickTrack.h"
#include "host/analysis/SongAnalyzer.h"

#include <doctest/doctest.h>

#include <cmath>
#include <cstring>
#include <vector>

using namespace pxvis::host;

TEST_CASE("The click track is as long as it says, however it is read, and never too loud")
{
    constexpr size_t frames = size_t { ClickTrack::Seconds } * SampleRate;
    ClickTrack track;
    std::vector<float> whole(2 * frames + 2);
    REQUIRE(track.Read(whole.data(), frames + 1) == frames);
    CHECK(track.Read(whole.data(), 1) == 0);
    for (const float sample : whole)
        REQUIRE(std::fabs(sample) <= 1);

    ClickTrack other;
    std::vector<float> parts(whole.size());
    for (size_t done = 0; done < 1000; done += 125)
        REQUIRE(other.Read(&parts[2 * done], 125) == 125);
    CHECK(std::memcmp(parts.data(), whole.data(), 2000 * sizeof(float)) == 0);
}

TEST_CASE("Its kicks are impacts, two a second, and all of its beats are heard")
{
    ClickTrack track;
    SongAnalyzer analyzer(track);
    AudioRecord record;
    int impacts = 0;
    int beats = 0;
    int steps = 0;
    int last = 0;
    for (; analyzer.Next(record); ++steps) {
        impacts += record.level > 100 && last <= 100 ? 1 : 0;
        last = record.level;
        beats += record.beat != 0 ? 1 : 0;
    }
    CHECK(steps == 60 * ClickTrack::Seconds);
    CHECK(std::abs(impacts - 2 * ClickTrack::Seconds) <= 2);
    CHECK(std::abs(beats - 2 * ClickTrack::Seconds) <= 8); // the beat is found after a while
}
