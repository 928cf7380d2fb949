#include "components/CTextVisComponent.h"

#include "components/TextPresets.h"
#include "engine2d/IVisBuffer.h"
#include "engine2d/VisLimits.h"
#include "engine2d/VisTextPages.h"
#include "foundation/IOQImage.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQSiblingModules.h"
#include "foundation/OQTruncate.h"
#include "kernels/Wrapped.h"

#include <algorithm>
#include <cmath>

namespace {

uint32_t Now()
{
    return static_cast<uint32_t>(OQClockMilliseconds());
}

int64_t PixelsInside(const OQRect& box, const OQSize& picture)
{
    const int64_t width = int64_t { std::min(box.right, picture.cx) } - std::max(box.left, 0);
    const int64_t height = int64_t { std::min(box.bottom, picture.cy) } - std::max(box.top, 0);
    return std::max<int64_t>(width, 0) * std::max<int64_t>(height, 0);
}

uint32_t ColorByte(double value)
{
    return static_cast<uint32_t>(OQTruncateToInt32(value * 255.0)) & 0xFF;
}

}

CTextVisComponent::CTextVisComponent()
{
    Bind(u"Text", m_text, u"ARTIST - NAME", nullptr, CVisRowForm::Pages);
    Bind(u"RenderDelayMilliseconds", m_renderDelayMilliseconds, 0);
    Bind(u"RenderDuration", m_renderDuration, 0);
    Bind(u"TextLocationEquation", m_textLocationEquation, u"x1=0;y1=.4;x2=1;y2=.6");
    Bind(u"FontName", m_fontName, u"DEFAULT");
    Bind(u"FontSize", m_fontSize, 0.012f);
    Bind(u"TextColorEquation", m_textColorEquation, u"r=1;g=1;b=1;");
    BindChoice(u"TextAlignment", m_textAlignment, 5, TextAlignmentPresets());
    LoadProperties(nullptr);
}

int32_t CTextVisComponent::Prepare(IVisBuffer&, IVisAudioData&)
{
    m_page = -1;
    CutTextPages(m_text, m_pages);
    m_stamp = 0;

    m_location.Compile(m_textLocationEquation);
    m_edges = { m_location.StartVariable(u"x1"), m_location.StartVariable(u"y1"),
        m_location.StartVariable(u"x2"), m_location.StartVariable(u"y2") };
    const float places[] = { 0.0f, 0.4f, 1.0f, 0.6f };
    for (size_t i = 0; i < m_edges.size(); ++i)
        *m_edges[i] = double { places[i] };
    m_width = m_location.StartVariable(u"width");
    m_height = m_location.StartVariable(u"height");

    m_color.Compile(m_textColorEquation);
    m_channels
        = { m_color.StartVariable(u"r"), m_color.StartVariable(u"g"), m_color.StartVariable(u"b") };
    for (double* channel : m_channels)
        *channel = 255.0;

    const auto width = static_cast<float>(m_rect.Width());
    const auto height = static_cast<float>(m_rect.Height());
    const float size = std::sqrt(width * width + height * height) * m_fontSize;
    OQFontDescriptor descriptor;
    descriptor.height = pxvis::kernels::MultiplyWrapped(2, OQTruncateToInt32(size));
    if (m_fontName.CompareNoCase(u"DEFAULT") != 0)
        descriptor.typeName = m_fontName.GetText();
    m_font.reset(OQCreateFont(descriptor));
    m_prepared = true;
    return 0;
}

// The font keeps up to twice the picture's pixels, or those of a small picture, in a byte each, and
// three copies of a text are about. Before the layer has a size nothing is drawn and nothing kept.
int64_t CTextVisComponent::KeptPixels() const
{
    const int64_t pixels = int64_t { m_rect.Width() } * m_rect.Height();
    if (pixels <= 0)
        return 0;
    return std::max<int64_t>(pixels, VisLimits::textLeastKeptPixels) / 2
        + VisLimits::textUnits * 3 / 2;
}

int32_t CTextVisComponent::Draw(IVisBuffer& buffer, IVisAudioData& audio)
{
    if (!m_prepared) {
        const int64_t characters
            = int64_t { m_textLocationEquation.GetLength() } + m_textColorEquation.GetLength();
        if (!OQTakeWork(VisLimits::compileCharacterWork * characters))
            return -1;
        Prepare(buffer, audio);
    }
    const int64_t elapsed = Now() - m_stamp;
    const bool isOver = elapsed > m_renderDuration;
    if (m_pages.IsEmpty() || (isOver && elapsed < m_renderDelayMilliseconds))
        return 0;
    // The first page comes at once, also on a clock that hasn't run for its duration yet.
    const bool isNextDue = isOver || m_page < 0;
    if (isNextDue)
        m_page = m_page + 1 < m_pages.GetCount() ? m_page + 1 : 0;
    if (m_page >= 0 && !m_pages[m_page].IsEmpty())
        DrawPage(m_pages[m_page], buffer, audio);
    if (isNextDue)
        m_stamp = Now();
    return 0;
}

void CTextVisComponent::DrawPage(const OQString& page, IVisBuffer& buffer, IVisAudioData& audio)
{
    IOQImage* image = buffer.GetImage(0);
    if (!image || !m_font || !OQTakeWork(VisLimits::textWork))
        return;
    const OQSize picture = image->GetSize();
    const std::u16string& text = m_expansion.Expand(page, audio);
    const OQRect box = RunLocation(audio, Measure(*image, text), picture);
    const uint32_t color = RunColor(audio);
    // Also without any work left to lay the text out, which is known only when it is done.
    if (!OQTakeWork(VisLimits::textPixelWork * PixelsInside(box, picture) + 1))
        return;
    const int64_t before = m_font->GetWork();
    image->DrawText(text.c_str(), box, color, m_font.get(), m_textAlignment, -1, -1);
    OQSpendWork(m_font->GetWork() - before);
}

OQSize CTextVisComponent::Measure(const IOQImage& image, const std::u16string& text)
{
    const int64_t before = m_font->GetWork();
    const OQSize size
        = image.MeasureText(text.c_str(), m_font.get(), m_textAlignment, m_rect.Width());
    OQSpendWork(m_font->GetWork() - before);
    return size;
}

OQRect CTextVisComponent::RunLocation(
    IVisAudioData& audio, const OQSize& text, const OQSize& picture)
{
    const double width = picture.cx;
    const double height = picture.cy;
    *m_width = text.cx / width;
    *m_height = text.cy / height;
    m_location.Run(audio);
    return { OQTruncateToInt32(width * *m_edges[0]), OQTruncateToInt32(height * *m_edges[1]),
        OQTruncateToInt32(width * *m_edges[2]), OQTruncateToInt32(height * *m_edges[3]) };
}

uint32_t CTextVisComponent::RunColor(IVisAudioData& audio)
{
    m_color.Run(audio);
    return ColorByte(*m_channels[2]) << 16 | ColorByte(*m_channels[1]) << 8
        | ColorByte(*m_channels[0]);
}
