#include "host/analysis/SpectrumAnalysis.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

using namespace pxvis::host;

namespace {

using Bands = std::array<uint8_t, SpectrumAnalysis::BandCount>;

Bands AnalyzeSine(double frequency, double amplitude, double phase = 0)
{
    std::vector<float> samples(SpectrumAnalysis::WindowSize);
    for (size_t i = 0; i < samples.size(); ++i) {
        const double angle
            = 2 * std::numbers::pi * frequency * static_cast<double>(i) / 44100 + phase;
        samples[i] = static_cast<float>(amplitude * std::sin(angle));
    }
    Bands bands;
    SpectrumAnalysis().Analyze(samples.data(), bands.data());
    return bands;
}

}

TEST_CASE("A full-scale 1 kHz sine fills its band and leaves the bands ten away alone")
{
    for (const double phase : { 0.0, 1.0, 2.0 }) {
        const Bands bands = AnalyzeSine(1000, 1, phase);
        CHECK(bands[23] == 255); // 1000 / (44100 / 1024) = 23.2
        for (size_t band = 0; band < bands.size(); ++band) {
            if (band <= 13 || band >= 33)
                CHECK(bands[band] < 32);
        }
    }
}

TEST_CASE("Bands are linear in frequency and bytes linear in decibels")
{
    for (const size_t band : { 5, 100, 300, 500 }) {
        const double frequency = (2.0 * static_cast<double>(band) + 0.5) * 44100 / 2048;
        const Bands full = AnalyzeSine(frequency, 1);
        CHECK(std::max_element(full.begin(), full.end()) - full.begin()
            == static_cast<std::ptrdiff_t>(band));
        // Between the two bins of its band a sine counts 1.6 dB more than on one of them.
        for (const double decibels : { -10.0, -36.0, -60.0 }) {
            const Bands bands = AnalyzeSine(frequency, std::pow(10.0, decibels / 20));
            CHECK(std::abs(bands[band] - (decibels + 1.58 + 72) / 72 * 255) < 1);
        }
        CHECK(AnalyzeSine(frequency, std::pow(10.0, -76.0 / 20))[band] == 0);
    }
}

TEST_CASE("Silence is 0 in every band")
{
    const Bands bands = AnalyzeSine(1000, 0);
    CHECK(std::all_of(bands.begin(), bands.end(), [](uint8_t value) { return value == 0; }));
}
