#include "host/analysis/SongAnalyzer.h"
#include "host/analysis/Synthesizer.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <vector>

using namespace pxvis::host;

namespace {

struct Band
{
    double tempo;
    double kickGain;
    double bassGain;
};

}

TEST_CASE("Kicks are impacts in time, and snares, hats, bass notes and chords are not")
{
    for (const Band& band : { Band { 90, 0.7, 0.15 }, Band { 124, 0.7, 0.2 },
             Band { 124, 0.3, 0.08 }, Band { 172, 0.5, 0.15 } }) {
        CAPTURE(band.tempo);
        CAPTURE(band.kickGain);
        Synthesizer song(25);
        std::vector<double> kicks;
        const double beat = 60 / band.tempo;
        for (int i = 0; (i + 1) * beat < 25; ++i) {
            const double time = 0.1 + i * beat;
            if (i % 2)
                song.Snare(time);
            else
                song.Kick(kicks.emplace_back(time), band.kickGain);
            if (i % 8 == 6)
                song.Kick(kicks.emplace_back(time + beat / 2), band.kickGain);
            song.Hat(time);
            song.Hat(time + beat / 2, 0.07);
            for (const double part : { 0.0, 0.25, 0.5 })
                song.Tone(time + part * beat, beat * 0.24, i / 8 % 2 ? 55 : 65.4, band.bassGain);
            if (i % 4 == 0) {
                for (const double note : { 220.0, 277.2, 329.6 })
                    song.Tone(time, 4 * beat, note, 0.05, 0.05);
            }
        }

        SongAnalyzer analyzer(song);
        std::vector<bool> heard(kicks.size());
        int others = 0;
        int wrong = 0;
        AudioRecord record;
        while (analyzer.Next(record)) {
            CHECK(record.level >= 0);
            CHECK(record.level <= 255);
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
        }
        CHECK(std::count(heard.begin(), heard.end(), true)
            >= 0.9 * static_cast<double>(kicks.size()));
        CHECK(wrong < 0.03 * others);
    }
}
