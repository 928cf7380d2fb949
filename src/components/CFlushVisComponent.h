#pragma once

#include "components/CRowVisComponent.h"
#include "engine2d/CVisEquation.h"

#include <vector>

// Fills a rectangle of the layer with one colour when its equation says so. Colours of a list take
// turns, on the engine's clock and only in frames that fill.
class CFlushVisComponent final : public CRowVisComponent
{
public:
    CFlushVisComponent();

    int32_t LoadProperties(const CVisPropertyList* list) override;
    int32_t Draw(IVisBuffer& buffer, IVisAudioData& audio) override;
    int32_t Prepare(IVisBuffer& buffer, IVisAudioData& audio) override;

private:
    void ReadAlternatingColors(const OQString& text);
    void TakeNextColor();

    Color m_color;
    VisFractionRect m_rectangle;
    OQString m_flushEquation;
    OQString m_alternatingColors;

    std::vector<uint32_t> m_colors; // that take turns; 0xRRGGBB
    int32_t m_interval = 0; // seconds
    size_t m_colorIndex = 0;
    int64_t m_lastChange; // engine's clock, ns

    OQRect m_pixelRectangle;
    CVisEquation m_flush;
    double* m_isFlushing = nullptr; // the equation's `f`
};
