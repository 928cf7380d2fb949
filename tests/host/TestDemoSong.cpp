#include "host/SongDecoder.h"
#include "host/analysis/SongAnalyzer.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <vector>

using namespace pxvis::host;

TEST_CASE("The demo song's kicks are impacts, its other steps are not, and its beat is found")
{
    const std::string folder = PXVIS_SOURCE_DIR "/data/demo/";
    std::vector<double> kicks;
    std::ifstream list(folder + "kicks.txt");
    for (double time = 0; list >> time;)
        kicks.push_back(time);
    REQUIRE(kicks.size() > 30);

    std::string error;
    const auto decoder = SongDecoder::Open(folder + "pxvis-demo.opus", error);
    REQUIRE_MESSAGE(decoder, error);
    SongAnalyzer analyzer(*decoder);
    std::vector<bool> heard(kicks.size());
    int others = 0;
    int wrong = 0;
    int beats = 0;
    int beatsOnTheGrid = 0;
    AudioRecord record;
    while (analyzer.Next(record)) {
        const double time = static_cast<double>(analyzer.SamplePosition()) / SampleRate;
        bool near = false;
        for (size_t i = 0; i < kicks.size(); ++i) {
            if (std::abs(time - kicks[i]) > 1.001 / 60)
                continue;
            near = true;
            heard[i] = heard[i] || record.level > 100;
        }
        others += !near;
        wrong += !near && record.level > 100;
        if (record.beat && time > 5) {
            const double offset = std::remainder(time, 60.0 / 124);
            ++beats;
            beatsOnTheGrid += std::abs(offset) <= 0.025;
        }
    }
    CHECK(std::count(heard.begin(), heard.end(), true) >= 0.9 * static_cast<double>(kicks.size()));
    CHECK(wrong < 0.03 * others);
    CHECK(beatsOnTheGrid >= 0.95 * (analyzer.SamplePosition() / 44100.0 - 5) * 124 / 60);
    CHECK(beats - beatsOnTheGrid <= 0.05 * beats);
}
