#pragma once

#include "components/CDisplacementGrid.h"
#include "components/CFeedbackVisComponent.h"
#include "expression/CMathColumns.h"

#include <optional>

// Feedback through an equation that runs afresh in each frame, on a coarse grid of points; between
// them positions are interpolated.
class CDynamicTransformVisComponent final : public CFeedbackVisComponent
{
public:
    CDynamicTransformVisComponent();

    int32_t Draw(IVisBuffer& buffer, IVisAudioData& audio) override;
    int32_t Prepare(IVisBuffer& buffer, IVisAudioData& audio) override;
    int64_t KeptPixels() const override;

private:
    OQString m_pixelEquation;
    OQString m_frameEquation;

    CDisplacementGrid m_grid;
    CVariableTable m_variables; // of both equations, so that points see what the frame sets
    CMathEvaluator m_frame;
    CMathEvaluator m_pixel;
    std::optional<CMathColumns> m_columns; // of m_pixel
    double* m_distance = nullptr; // of the point's
    double* m_rotation = nullptr;
};
