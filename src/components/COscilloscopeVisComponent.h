#pragma once

#include "components/CFreeVisComponent.h"
#include "engine2d/CVisEquation.h"

#include <array>

class CVisBufferHelper;
struct VisAudioBlock;

// The waveform across a straight line whose ends an equation moves. Each step of the line paints a
// run of pixels at a right angle to it, in the colours of a moving gradient.
class COscilloscopeVisComponent final : public CFreeVisComponent
{
public:
    COscilloscopeVisComponent();

    int32_t Randomize() override;
    int32_t Draw(IVisBuffer& buffer, IVisAudioData& audio) override;
    int32_t Prepare(IVisBuffer& buffer, IVisAudioData& audio) override;

private:
    // Pixels; the ends may lie anywhere.
    struct Line
    {
        int64_t ax = 0;
        int64_t ay = 0;
        int64_t bx = 0;
        int64_t by = 0;
    };

    Line FindLine(int32_t width, int32_t height) const;
    static bool Clip(Line& line, int32_t width, int32_t height);
    static int64_t Steps(const Line& line);
    void DrawWave(const CVisBufferHelper& picture, const VisAudioBlock& block, const Line& raw,
        const Line& line, int32_t maxSwing) const;
    int64_t Swing(const VisAudioBlock& block, size_t sample, int32_t maxSwing) const;
    uint32_t RunPixel(int64_t swing, int64_t offset) const;

    OQString m_lineEquation;
    CGradientEx m_gradient;
    int32_t m_fillStyle = 0; // 0 solid, 1 from the swing down, 2 from the line up
    int32_t m_drawStyle = 0; // flags
    int32_t m_channel = 0;
    float m_maxHeight = 0; // of the picture's smaller side

    CVisEquation m_equation;
    std::array<double*, 4> m_ends {}; // of point 1, then of point 2
    bool m_isPlain = false; // the ends are x and y, not turns and distance
    float m_phase = 0;
};
