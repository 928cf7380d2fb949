#pragma once

#include "components/CFreeVisComponent.h"
#include "expression/CMathColumns.h"

#include <array>
#include <optional>

class IOQImage;

// A line through points that an equation works out one by one from the waveform. Its equation has
// stages, which run at different moments on the same variables.
class CSuperScopeVisComponent final : public CFreeVisComponent
{
public:
    CSuperScopeVisComponent();

    int32_t Draw(IVisBuffer& buffer, IVisAudioData& audio) override;
    int32_t Prepare(IVisBuffer& buffer, IVisAudioData& audio) override;

private:
    enum Stage : size_t
    {
        StageInit, // once, when the equation is compiled
        StagePoint, // for each point
        StageFrame, // at the end of each frame
        StageBeat, // in a frame with a beat
        StageImpact, // in a frame with an impact
    };

    CMathEvaluator& At(Stage stage) { return m_stages[stage]; }

    void Run(Stage stage);
    double* StartVariable(const OQChar* name);
    int64_t PointWork();
    int32_t RunPoints(const int8_t* wave, int32_t first, int32_t end, int32_t count);
    void DrawPoints(IOQImage& image, const int8_t* wave, int32_t count, uint32_t color);

    OQString m_scopeEquation;
    CGradientEx m_gradient;

    CVariableTable m_variables; // outlives the stages, which work on it
    std::array<CMathEvaluator, equationStages> m_stages;
    std::optional<CMathColumns> m_points; // of the stage for each point
    double* m_count = nullptr; // "n", "x" and so on
    double* m_x = nullptr;
    double* m_y = nullptr;
    double* m_position = nullptr;
    double* m_level = nullptr;
    float m_phase = 0;
    int32_t m_frameCounter = 0;
};
