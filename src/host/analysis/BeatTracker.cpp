#include "host/analysis/BeatTracker.h"

#include "kernels/Maths.h"

#include <algorithm>
#include <cstdlib>

namespace pxvis::host {

namespace {

// Weight of an onset by its distance from where the beat is due, in hops: a normal curve of 15 ms.
constexpr int Reach = 6;
constexpr std::array<float, 2 * Reach + 1> Closeness = { 0.056f, 0.135f, 0.278f, 0.487f, 0.726f,
    0.923f, 1.0f, 0.923f, 0.726f, 0.487f, 0.278f, 0.135f, 0.056f };

constexpr float BeatCost = 0.35f; // an onset weaker than this share speaks against a beat
constexpr float TempoPrice = 0.12f; // a squared octave away from the usual tempo, each beat
constexpr float UsualPeriod = 86; // hops; 120 a minute
constexpr int MaxChange = 4; // hops of period from one beat to the next
constexpr float ChangePrice = 7; // a unit of the period's logarithm
constexpr float Memory = 5; // how far any hypothesis may fall behind the best

constexpr float MeanRate = 0.008f; // a hop; 0.7 s
constexpr float PeakDecay = 0.9992f; // a hop; to a half in 5 s
constexpr float Dominance = 1.8f; // an onset stands out of the mean flux by this factor
constexpr float SmallestShare = 0.1f; // of the strongest onsets of the last seconds
constexpr float FullShare = 0.6f;
constexpr int DeadHops = 8; // 46 ms
constexpr float Audible = 1e-6f; // -60 dB
constexpr int FirstOnsets = 4;

}

BeatTracker::BeatTracker()
    : m_combs(PeriodCount)
{
    for (int i = 0; i < PeriodCount; ++i) {
        const int period = ShortestPeriod + i;
        m_combs[static_cast<size_t>(i)].scores.resize(static_cast<size_t>(period));
        const auto octaves
            = static_cast<float>(maths::Log(period / double { UsualPeriod }) / maths::Log(2));
        m_beatCost[static_cast<size_t>(i)] = BeatCost + TempoPrice * octaves * octaves;
    }
}

// The strength, 0 to 1, of an onset PeakReach hops ago; 0 if there was none.
float BeatTracker::NextOnset(const OnsetFrame& frame)
{
    std::copy(m_flux.begin() + 1, m_flux.end(), m_flux.begin());
    m_flux.back() = frame.broad;
    m_fluxMean += (frame.broad - m_fluxMean) * MeanRate;
    ++m_hopsSinceOnset;
    const float flux = m_flux[PeakReach];
    const float strength = flux - Dominance * m_fluxMean;
    const bool peak = flux >= *std::max_element(m_flux.begin(), m_flux.end());
    m_fluxPeak *= PeakDecay;
    if (!peak || strength <= 0 || m_hopsSinceOnset < DeadHops)
        return 0;
    m_fluxPeak = std::max(m_fluxPeak, strength);
    if (strength < SmallestShare * m_fluxPeak)
        return 0;
    m_hopsSinceOnset = 0;
    return std::min(1.0f, strength / (FullShare * m_fluxPeak));
}

// One hop later; what was a whole period behind its beat is at its next one.
void BeatTracker::Advance()
{
    std::array<float, PeriodCount> arriving;
    for (size_t i = 0; i < PeriodCount; ++i) {
        Comb& comb = m_combs[i];
        comb.beat = comb.beat == 0 ? static_cast<int>(comb.scores.size()) - 1 : comb.beat - 1;
        arriving[i] = comb.scores[static_cast<size_t>(comb.beat)];
    }
    for (int i = 0; i < PeriodCount; ++i) {
        float score = m_best.score - Memory;
        const int first = std::max(0, i - MaxChange);
        const int last = std::min(PeriodCount - 1, i + MaxChange);
        for (int from = first; from <= last; ++from) {
            // |log(a / b)| to first order
            const float change = static_cast<float>(std::abs(i - from))
                / static_cast<float>(ShortestPeriod + std::min(i, from));
            score = std::max(score, arriving[static_cast<size_t>(from)] - ChangePrice * change);
        }
        Comb& comb = m_combs[static_cast<size_t>(i)];
        comb.scores[static_cast<size_t>(comb.beat)] = score - m_beatCost[static_cast<size_t>(i)];
    }
    // Between onsets no score rises, so the best stays the best until its own next beat.
    if (++m_best.sinceBeat == m_best.period)
        FindBest();
}

void BeatTracker::AddOnset(float strength)
{
    for (Comb& comb : m_combs) {
        const int period = static_cast<int>(comb.scores.size());
        for (int i = 0; i <= 2 * Reach; ++i) {
            const int slot = (comb.beat + i - Reach + period) % period;
            comb.scores[static_cast<size_t>(slot)] += strength * Closeness[static_cast<size_t>(i)];
        }
    }
    FindBest();
    LowerScores();
}

// The scores of a long song would outgrow their precision.
void BeatTracker::LowerScores()
{
    constexpr float limit = 64;
    if (m_best.score < limit)
        return;
    for (Comb& comb : m_combs) {
        for (float& score : comb.scores)
            score -= limit;
    }
    m_best.score -= limit;
}

void BeatTracker::Push(const OnsetFrame& frame)
{
    ++m_hops;
    m_hopsSinceSound = frame.loudness > Audible ? 0 : std::min(m_hopsSinceSound + 1, 1 << 20);
    if (m_hopsSinceSound > 2 * LongestPeriod)
        m_onsets = 0;
    Advance();
    const float strength = NextOnset(frame);
    if (strength > 0) {
        AddOnset(strength);
        ++m_onsets;
    }
}

void BeatTracker::FindBest()
{
    m_best.score = -1e30f;
    for (const Comb& comb : m_combs) {
        const auto top = std::max_element(comb.scores.begin(), comb.scores.end());
        if (*top <= m_best.score)
            continue;
        const int period = static_cast<int>(comb.scores.size());
        const int slot = static_cast<int>(top - comb.scores.begin());
        m_best = { period, (slot - comb.beat + period) % period, *top };
    }
}

BeatTracker::Prediction BeatTracker::Predict() const
{
    constexpr int64_t hop = OnsetSpectrum::Hop;
    Prediction prediction;
    prediction.beats = m_onsets >= FirstOnsets && 2 * m_hopsSinceSound <= 3 * m_best.period;
    prediction.beat = (m_hops - PeakReach - m_best.sinceBeat) * hop - OnsetSpectrum::AttackDelay;
    prediction.period = m_best.period * hop;
    return prediction;
}

}
