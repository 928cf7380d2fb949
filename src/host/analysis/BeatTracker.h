#pragma once

#include "host/analysis/OnsetSpectrum.h"

#include <array>
#include <cstdint>
#include <vector>

namespace pxvis::host {

// Follows the beat of a song at 60 to 200 a minute. Every pair of a period and a place in it is a
// hypothesis with a score: an onset where a beat is due raises it, a beat that is due costs a
// little, and at each beat the period may change a little at a price (a Viterbi recursion over the
// bar-pointer states of Whiteley, Cemgil and Godsill, "Bayesian modelling of temporal structure in
// musical audio", 2006, with the comb of expected beats as its observation). The best hypothesis
// predicts the next beat, so that beats come in time without hearing ahead.
class BeatTracker
{
public:
    BeatTracker();

    // Takes the next hop.
    void Push(const OnsetFrame& frame);

    struct Prediction
    {
        bool beats = false; // false before a few onsets were heard, and in silence
        int64_t beat = 0; // song position of one beat in samples; the others lie whole periods away
        int64_t period = 0; // samples
    };

    Prediction Predict() const;

private:
    static constexpr int ShortestPeriod = 52; // hops; 199 beats a minute
    static constexpr int LongestPeriod = 173; // 60 beats a minute
    static constexpr int PeriodCount = LongestPeriod - ShortestPeriod + 1;
    static constexpr int PeakReach = 3; // hops on both sides that a peak must top

    // One period's scores by the hops since the last beat, as a ring that turns with time.
    struct Comb
    {
        std::vector<float> scores;
        int beat = 0; // where "0 hops since the beat" stands in the ring
    };

    struct Hypothesis
    {
        int period = ShortestPeriod; // hops
        int sinceBeat = 0; // hops
        float score = 0;
    };

    float NextOnset(const OnsetFrame& frame);
    void Advance();
    void AddOnset(float strength);
    void FindBest();
    void LowerScores();

    std::vector<Comb> m_combs; // by period
    std::array<float, PeriodCount> m_beatCost {};
    Hypothesis m_best;

    std::array<float, 2 * PeakReach + 1> m_flux {}; // of the last hops, the newest last
    float m_fluxMean = 0;
    float m_fluxPeak = 0;
    int m_hopsSinceOnset = 0;
    int m_onsets = 0; // since the last silence
    int m_hopsSinceSound = 1 << 20;
    int64_t m_hops = 0; // heard
};

}
