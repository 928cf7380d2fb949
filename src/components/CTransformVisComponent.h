#pragma once

#include "components/CRowVisComponent.h"
#include "components/CTransformMap.h"
#include "engine2d/CVisEquation.h"
#include "kernels/TransformRow.h"

#include <array>
#include <vector>

class CVisBufferHelper;

// Feedback: makes the layer's new picture out of its last one through a map, then scrolls, zooms,
// softens and tints it, so that whatever else is drawn is pulled along and fades.
class CTransformVisComponent final : public CRowVisComponent
{
public:
    CTransformVisComponent();

    int32_t Randomize() override;
    int32_t Draw(IVisBuffer& buffer, IVisAudioData& audio) override;
    int32_t Prepare(IVisBuffer& buffer, IVisAudioData& audio) override;
    int64_t KeptPixels() const override;

private:
    struct Move // whole pixels
    {
        int32_t x = 0;
        int32_t y = 0;
    };

    // An equation whose x and y are fractions of the picture's smaller side.
    struct MoveEquation
    {
        CVisEquation equation;
        double* x = nullptr;
        double* y = nullptr;

        void Compile(const OQString& text);
        Move Run(IVisAudioData& audio, int32_t smallerSide);
    };

    void RunColor(IVisAudioData& audio, pxvis::kernels::TransformPass& pass);
    void DrawRows(pxvis::kernels::TransformPass& pass, const Move& zoom);

    OQString m_transformEquation;
    OQString m_scrollEquation;
    OQString m_zoomEquation;
    OQString m_colorEquation;
    int32_t m_drawFrequency = 0;
    int32_t m_flipBuffer = 0;
    int32_t m_radiusMode = 0;
    int32_t m_clipAtMaxRadius = 0;
    VisFractionPoint m_centerPoint; // in half layers, from the middle
    VisFractionRect m_transformRectangle;

    CTransformMap m_map;
    MoveEquation m_scroll;
    MoveEquation m_zoom;
    CVisEquation m_color;
    std::array<double*, 3> m_channels {}; // of the colour equation: b, g, r
    int32_t m_frameCounter = 0; // calls of Draw
    OQRect m_pixelRectangle;
    std::vector<pxvis::kernels::TransformRowStart> m_rowStarts; // kept for its memory
};
