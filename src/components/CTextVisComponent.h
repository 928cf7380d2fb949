#pragma once

#include "components/CRowVisComponent.h"
#include "components/CTextExpansion.h"
#include "engine2d/CVisEquation.h"
#include "foundation/IOQFont.h"
#include "foundation/OQStringArray.h"

#include <array>
#include <memory>

class IOQImage;

// Writes text: track data in pages that take turns by time, in a place and a colour that equations
// compute for every frame. The font keeps what a page looks like, so that a frame in which neither
// text nor box width changed lays out nothing.
class CTextVisComponent final : public CRowVisComponent
{
public:
    CTextVisComponent();

    int32_t Draw(IVisBuffer& buffer, IVisAudioData& audio) override;
    int32_t Prepare(IVisBuffer& buffer, IVisAudioData& audio) override;
    int64_t KeptPixels() const override;

private:
    void DrawPage(const OQString& page, IVisBuffer& buffer, IVisAudioData& audio);
    OQSize Measure(const IOQImage& image, const std::u16string& text);
    OQRect RunLocation(IVisAudioData& audio, const OQSize& text, const OQSize& picture);
    uint32_t RunColor(IVisAudioData& audio);

    OQString m_text;
    int32_t m_renderDelayMilliseconds = 0;
    int32_t m_renderDuration = 0; // milliseconds
    OQString m_textLocationEquation;
    OQString m_fontName;
    float m_fontSize = 0; // of the layer's diagonal
    OQString m_textColorEquation;
    int32_t m_textAlignment = 0;

    OQStringArray m_pages;
    int32_t m_page = -1; // the current one; -1: before the first
    uint32_t m_stamp = 0; // of the last change of page, in milliseconds of the engine's clock
    std::unique_ptr<IOQFont> m_font; // null without the image module
    CTextExpansion m_expansion;
    CVisEquation m_location;
    std::array<double*, 4> m_edges {}; // x1, y1, x2, y2
    double* m_width = nullptr; // of the text, as a fraction of the picture
    double* m_height = nullptr;
    CVisEquation m_color;
    std::array<double*, 3> m_channels {}; // r, g, b
};
