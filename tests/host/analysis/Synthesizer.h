#pragma once

#include "host/analysis/SampleSource.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

// Songs made of a few instruments, for tests that know when each note was played.
class Synthesizer : public pxvis::host::SampleSource
{
public:
    explicit Synthesizer(double seconds)
        : m_samples(2 * static_cast<size_t>(seconds * pxvis::host::SampleRate))
    {
    }

    static constexpr double Pi2 = 2 * std::numbers::pi;

    // Adds wave(seconds since start) to both channels for as long as told.
    template <typename Wave>
    void Add(double start, double length, Wave wave)
    {
        const double rate = pxvis::host::SampleRate;
        const auto first = static_cast<int64_t>(std::ceil(start * rate));
        const auto last = std::min(static_cast<int64_t>((start + length) * rate), Frames());
        for (int64_t i = std::max<int64_t>(first, 0); i < last; ++i) {
            const auto sample = static_cast<float>(wave(static_cast<double>(i) / rate - start));
            m_samples[static_cast<size_t>(2 * i)] += sample;
            m_samples[static_cast<size_t>(2 * i + 1)] += sample;
        }
    }

    void Click(double start, double gain = 0.8, double frequency = 1500)
    {
        Add(start, 0.03,
            [=](double t) { return gain * std::exp(-t * 200) * std::sin(Pi2 * frequency * t); });
    }

    // Falls from 180 to 50 Hz, as drum machines do it, with the beater's click.
    void Kick(double start, double gain = 0.7)
    {
        Add(start, 0.35, [=, this](double t) {
            const double phase = 50 * t + 130 / 30.0 * (1 - std::exp(-30 * t));
            return gain
                * (std::exp(-t * 9) * std::sin(Pi2 * phase) + 0.25 * std::exp(-t * 300) * Noise());
        });
    }

    void Snare(double start, double gain = 0.35)
    {
        Add(start, 0.25, [=, this](double t) {
            return gain * std::exp(-t * 18) * (0.6 * std::sin(Pi2 * 190 * t) + 0.8 * Noise());
        });
    }

    void Hat(double start, double gain = 0.12)
    {
        double previous = 0;
        Add(start, 0.06, [=, this](double t) mutable {
            const double noise = Noise();
            const double high = noise - previous;
            previous = noise;
            return gain * std::exp(-t * 70) * high;
        });
    }

    // A note of some harmonics with a soft start.
    void Tone(double start, double length, double frequency, double gain, double attack = 0.015)
    {
        Add(start, length, [=](double t) {
            const double shape = std::min({ 1.0, t / attack, (length - t) / 0.02 });
            double wave = 0;
            for (int harmonic = 1; harmonic <= 5; ++harmonic)
                wave += std::sin(Pi2 * frequency * harmonic * t) / (harmonic * harmonic);
            return gain * shape * wave;
        });
    }

    void NoiseFloor(double gain)
    {
        Add(0, static_cast<double>(Frames()) / pxvis::host::SampleRate,
            [=, this](double) { return gain * Noise(); });
    }

    size_t Read(float* interleaved, size_t frames) override
    {
        const size_t count = std::min(frames, m_samples.size() / 2 - m_read);
        std::copy_n(m_samples.begin() + static_cast<int64_t>(2 * m_read), 2 * count, interleaved);
        m_read += count;
        return count;
    }

    void Rewind() { m_read = 0; }

    int64_t Frames() const { return static_cast<int64_t>(m_samples.size() / 2); }

    std::vector<float>& Samples() { return m_samples; }

private:
    // -1 to 1, the same in every run.
    double Noise()
    {
        m_random = m_random * 1664525u + 1013904223u;
        return static_cast<double>(m_random) / 2147483648.0 - 1;
    }

    std::vector<float> m_samples; // interleaved
    size_t m_read = 0;
    uint32_t m_random = 1;
};
