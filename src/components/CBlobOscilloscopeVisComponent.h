#pragma once

#include "components/CFreeVisComponent.h"
#include "engine2d/CVisEquation.h"

#include <vector>

class CVisBufferHelper;

// The waveform bent into a circle round a centre that an equation moves: rays in all directions,
// each as long as the wave says, in the colours of a moving gradient.
class CBlobOscilloscopeVisComponent final : public CFreeVisComponent
{
public:
    CBlobOscilloscopeVisComponent();

    int32_t Draw(IVisBuffer& buffer, IVisAudioData& audio) override;
    int32_t Prepare(IVisBuffer& buffer, IVisAudioData& audio) override;

private:
    bool BuildPixels(int64_t radius, int32_t longestRay);
    void DrawRays(const CVisBufferHelper& picture, const int8_t* wave, int64_t swing, int64_t base,
        int32_t longestRay) const;

    CGradientEx m_gradient;
    float m_maxDeltaRadius = 0; // of the picture's width
    float m_baseRadius = 0;
    OQString m_locationEquation;

    CVisEquation m_location;
    double* m_turns = nullptr;
    double* m_distance = nullptr;
    float m_phase = 0;
    std::vector<uint32_t> m_pixels; // the gradient from the centre on; kept for its memory
};
