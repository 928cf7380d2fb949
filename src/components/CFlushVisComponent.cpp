#include "components/CFlushVisComponent.h"

#include "components/FlushPresets.h"
#include "engine2d/IVisBuffer.h"
#include "engine2d/VisLimits.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQNumberText.h"
#include "foundation/OQStringArray.h"
#include "kernels/PixelFromColor.h"

#include <algorithm>

namespace {

constexpr int32_t defaultInterval = 10; // seconds
constexpr int64_t nanosecondsPerSecond = 1'000'000'000;

}

CFlushVisComponent::CFlushVisComponent()
    : m_lastChange(OQClockNanoseconds())
{
    Bind(u"Color", m_color, 0);
    BindArea(u"Rectangle", m_rectangle);
    Bind(u"FlushEquation", m_flushEquation, u"f=1;", &FlushPresets());
    Bind(u"AlternatingColors", m_alternatingColors, u"", nullptr, CVisRowForm::ColorList);
    LoadProperties(nullptr);
}

int32_t CFlushVisComponent::LoadProperties(const CVisPropertyList* list)
{
    CRowVisComponent::LoadProperties(list);
    ReadAlternatingColors({});
    if (!list)
        return 0;
    // A list sets the colour as soon as it is read, so that the rows' order in the file counts.
    for (const CVisPropertyRow& row : *list) {
        if (row.Name == u"Color")
            m_color.value = TextToColor(row.Value);
        else if (row.Name == u"AlternatingColors")
            ReadAlternatingColors(row.Value);
    }
    return 0;
}

void CFlushVisComponent::ReadAlternatingColors(const OQString& text)
{
    m_colors.clear();
    m_colorIndex = 0;
    m_interval = defaultInterval;
    if (text.IsEmpty())
        return;
    OQStringArray parts;
    text.Split(u';', parts);
    m_interval = OQTextToInt(parts[0].GetText());
    for (int32_t i = 1; i < parts.GetCount(); ++i)
        m_colors.push_back(TextToColor(parts[i]));
    if (!m_colors.empty())
        m_color.value = m_colors.front();
}

int32_t CFlushVisComponent::Prepare(IVisBuffer&, IVisAudioData&)
{
    if (!OQTakeWork(VisLimits::compileCharacterWork * m_flushEquation.GetLength()))
        return -1;
    const OQRect area = PixelRect(m_rectangle, m_rect.Width(), m_rect.Height());
    m_pixelRectangle = { std::max(area.left, 0), std::max(area.top, 0),
        std::min(area.right, m_rect.Width()), std::min(area.bottom, m_rect.Height()) };
    m_flush.Compile(m_flushEquation);
    m_isFlushing = m_flush.StartVariable(u"f");
    m_prepared = true;
    return 0;
}

int32_t CFlushVisComponent::Draw(IVisBuffer& buffer, IVisAudioData& audio)
{
    if (!m_prepared && Prepare(buffer, audio) != 0)
        return -1;
    m_flush.Run(audio);
    if (!(*m_isFlushing > 0.0))
        return 0;
    TakeNextColor();

    const int64_t width
        = std::max(int64_t { m_pixelRectangle.right } - m_pixelRectangle.left, int64_t { 0 });
    const int64_t height
        = std::max(int64_t { m_pixelRectangle.bottom } - m_pixelRectangle.top, int64_t { 0 });
    IOQImage* image = buffer.GetImage(0);
    if (!image || !OQTakeWork(height * (VisLimits::fillRowWork + VisLimits::fillPixelWork * width)))
        return -1;
    // The image takes 0x00BBGGRR; the exchange of red and blue is its own inverse.
    const uint32_t color = pxvis::kernels::PixelFromColor(m_color.value);
    image->FillRect(m_pixelRectangle, color, 255, 255);
    return 0;
}

void CFlushVisComponent::TakeNextColor()
{
    const int64_t now = OQClockNanoseconds();
    if (m_colors.empty() || now - m_lastChange <= m_interval * nanosecondsPerSecond)
        return;
    m_lastChange = now;
    if (++m_colorIndex >= m_colors.size())
        m_colorIndex = 0;
    m_color.value = m_colors[m_colorIndex];
}
