#include "host/analysis/SongAnalyzer.h"
#include "host/analysis/Synthesizer.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace pxvis::host;

namespace {

std::vector<double> BeatsOf(Synthesizer& song)
{
    SongAnalyzer analyzer(song);
    AudioRecord record;
    std::vector<double> beats;
    while (analyzer.Next(record)) {
        if (record.beat)
            beats.push_back(static_cast<double>(analyzer.SamplePosition()) / SampleRate);
    }
    return beats;
}

struct Score
{
    int found = 0; // played beats with exactly one step within 25 ms
    int played = 0;
    int wrong = 0; // steps with no played beat within 25 ms
};

Score Compare(const std::vector<double>& played, const std::vector<double>& beats, double from)
{
    const auto near = [](double a, const std::vector<double>& all) {
        return std::count_if(
            all.begin(), all.end(), [a](double b) { return std::abs(a - b) <= 0.025; });
    };
    Score score;
    for (const double time : played) {
        if (time < from)
            continue;
        ++score.played;
        score.found += near(time, beats) == 1;
    }
    for (const double time : beats)
        score.wrong += time >= from && near(time, played) == 0;
    return score;
}

void CheckBeats(Synthesizer& song, const std::vector<double>& played, double from = 5)
{
    const Score score = Compare(played, BeatsOf(song), from);
    CHECK(score.found >= 0.95 * score.played);
    CHECK(score.wrong <= 0.05 * score.played);
}

constexpr double Length = 25;
constexpr double Last = Length - 0.1; // a beat at the very end may fall behind the last step

}

TEST_CASE("Click tracks of 70 to 180 a minute give one step a beat, in time after five seconds")
{
    for (const double tempo : { 70, 80, 90, 100, 113, 128, 140, 151, 160, 174, 180 }) {
        CAPTURE(tempo);

        enum
        {
            Bright,
            InNoise,
            Drum,
            Faint,
            Kinds
        };

        for (int kind = 0; kind < Kinds; ++kind) {
            CAPTURE(kind);
            Synthesizer song(Length);
            std::vector<double> played;
            for (double time = 0.31; time < Last; time += 60 / tempo) {
                played.push_back(time);
                if (kind == Drum)
                    song.Kick(time);
                else
                    song.Click(time, kind == Faint ? 0.02 : 0.8);
            }
            if (kind == InNoise)
                song.NoiseFloor(0.05);
            CheckBeats(song, played);
        }
    }
}

TEST_CASE("The beat of a band is found among eighths, syncopation and held chords")
{
    for (const double tempo : { 84, 110, 132 }) {
        CAPTURE(tempo);
        for (const bool syncopated : { false, true }) {
            CAPTURE(syncopated);
            Synthesizer song(Length);
            std::vector<double> played;
            const double beat = 60 / tempo;
            for (int i = 0; i * beat < Last; ++i) {
                const double time = i * beat;
                played.push_back(time);
                if (i % 2)
                    song.Snare(time);
                else if (i % 4 == 0 || !syncopated)
                    song.Kick(time);
                else
                    song.Kick(time + beat / 2);
                song.Hat(time);
                song.Hat(time + beat / 2, 0.07);
                song.Tone(time, beat * 0.9, i / 8 % 2 ? 55 : 65.4, 0.15);
                if (i % 4 == 0) {
                    for (const double note : { 220.0, 277.2, 329.6 })
                        song.Tone(time, 4 * beat, note, 0.05, 0.05);
                }
            }
            song.NoiseFloor(0.001);
            CheckBeats(song, played);
        }
    }
}

TEST_CASE("The beat follows a new tempo, a slow change of tempo and players who are not machines")
{
    Synthesizer sudden(40);
    Synthesizer gradual(40);
    Synthesizer human(40);
    std::vector<double> suddenBeats;
    std::vector<double> gradualBeats;
    std::vector<double> humanBeats;
    for (double time = 0.2; time < 39.9; time += time < 20 ? 0.5 : 60 / 140.0)
        sudden.Kick(suddenBeats.emplace_back(time));
    for (double time = 0.2; time < 39.9; time += 60 / (100 + time / 2))
        gradual.Kick(gradualBeats.emplace_back(time));
    for (int i = 0; i < 79; ++i)
        human.Kick(humanBeats.emplace_back(0.2 + 0.5 * i) + 0.012 * std::sin(i * 2.3));
    CheckBeats(sudden, suddenBeats, 25);
    CheckBeats(gradual, gradualBeats);
    CheckBeats(human, humanBeats);
}

TEST_CASE("In silence there is no beat, and a beat stops soon after its song")
{
    Synthesizer silence(5);
    CHECK(BeatsOf(silence).empty());
    Synthesizer hiss(10);
    hiss.NoiseFloor(0.0003);
    CHECK(BeatsOf(hiss).empty());
    Synthesizer stops(15);
    for (int i = 0; i < 16; ++i)
        stops.Click(0.5 * i);
    const std::vector<double> beats = BeatsOf(stops);
    REQUIRE_FALSE(beats.empty());
    CHECK(beats.back() < 8.6);
}
