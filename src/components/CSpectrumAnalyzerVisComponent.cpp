#include "components/CSpectrumAnalyzerVisComponent.h"

#include "components/SpectrumAnalyzerPresets.h"
#include "engine2d/CVisBufferHelper.h"
#include "engine2d/ImageSource.h"
#include "engine2d/VisLimits.h"
#include "engine2d/VisPresets.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQParallelRows.h"
#include "foundation/OQTruncate.h"
#include "kernels/BlendColor.h"
#include "kernels/FillRect.h"
#include "kernels/PixelFromColor.h"
#include "kernels/Wrapped.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <pxvis/IVisAudioData.h>

namespace {

using pxvis::kernels::AddWrapped;
using pxvis::kernels::MultiplyWrapped;
using pxvis::kernels::PixelFromColor;
using pxvis::kernels::SubtractWrapped;

constexpr float phaseStep = 0.005f;

int32_t LimitFall(int32_t velocity, int32_t terminalVelocity)
{
    const int32_t fastest = SubtractWrapped(0, terminalVelocity);
    return terminalVelocity != 0 && velocity <= fastest ? fastest : velocity;
}

// A row or column outside the picture counts as the one at the edge.
int32_t Clamped(int64_t position, int32_t side)
{
    return static_cast<int32_t>(std::clamp<int64_t>(position, 0, side - 1));
}

// Columns first to last and rows top to bottom, all included and inside the picture.
void FillBlock(const CVisBufferHelper& picture, int32_t first, int32_t last, int32_t top,
    int32_t bottom, uint32_t pixel)
{
    const int64_t width = picture.Width();
    pxvis::kernels::FillRect(picture.Bits() + (picture.Height() - 1 - top) * width + first, -width,
        last - first + 1, bottom - top + 1, pixel);
}

}

CSpectrumAnalyzerVisComponent::CSpectrumAnalyzerVisComponent()
{
    BindChoice(u"DrawSource", m_drawSource, 0, SpectrumDrawSourcePresets());
    BindChoice(u"Channels", m_spectrum.channels, 0, SpectrumChannelPresets());
    Bind(u"DrawPeaks", m_drawPeaks, 1, &NoYesPresets());
    Bind(u"DrawBars", m_drawBars, 1, &NoYesPresets());
    Bind(u"Mirrored", m_mirrored, 1, &NoYesPresets());
    Bind(u"ImageFile", m_imageFile, u"COVER_ART");
    Bind(u"PeakGravity", m_peakGravity, 512, &SpectrumGravityPresets());
    Bind(u"BarGravity", m_barGravity, 1024, &SpectrumGravityPresets());
    Bind(u"PeakTerminalVelocity", m_peakTerminalVelocity, 0, &SpectrumTerminalVelocityPresets());
    Bind(u"BarTerminalVelocity", m_barTerminalVelocity, 0, &SpectrumTerminalVelocityPresets());
    Bind(u"PeakThrowForce", m_peakThrowForce, 0, &SpectrumThrowPresets());
    Bind(u"FFTElements", m_spectrum.fftElements, 512, &SpectrumElementPresets());
    Bind(u"FrequencyScale", m_spectrum.frequencyScale, 5, &SpectrumScalePresets());
    Bind(u"TopWeight", m_spectrum.topWeight, 5, &SpectrumWeightPresets());
    Bind(u"UpScale", m_spectrum.upScale, 80, &SpectrumRaisePresets());
    Bind(u"BarWidth", m_barWidth, 0.01f, &SpectrumWidthPresets());
    Bind(u"BarSpacing", m_barSpacing, 0.003f, &SpectrumSpacingPresets());
    Bind(u"PeakHeight", m_peakHeight, 0.0f, &SpectrumPeakPresets());
    Bind(u"PeakColor", m_peakColor, 0xFFFFFF);
    Bind(u"Gradient", m_gradientText,
        u"{2, 4} [[0xFF0000,0x000000][0x00FF00,0x000000][0x0000FF,0x000000][0xFF0000,0x000000]]",
        &GradientPresets());
    Bind(u"MainRectangle", m_mainRectangle, &RectanglePresets());
    LoadProperties(nullptr);
}

int32_t CSpectrumAnalyzerVisComponent::Invalidate()
{
    m_prepared = false;
    return 0;
}

void CSpectrumAnalyzerVisComponent::Start()
{
    m_barVelocities.fill(0);
    m_barHeights.fill(0);
    m_peakHeights.fill(0);
    m_peakVelocities.fill(0);
    m_pixelRectangle = PixelRect(m_mainRectangle, m_rect.Width(), m_rect.Height());
    m_isPictureDue = true;
    m_gradient.SetText(m_gradientText);
    m_prepared = true;
}

// A rectangle without a width has no bars, and one that no picture can have is not filled. Without
// a height there are peaks, and the picture keeps its own.
int64_t CSpectrumAnalyzerVisComponent::KeptPixels() const
{
    const OQRect area = PixelRect(m_mainRectangle, m_rect.Width(), m_rect.Height());
    const int64_t width = std::abs(int64_t { area.right } - area.left);
    const int64_t height = std::abs(int64_t { area.bottom } - area.top);
    if (m_drawSource != 1 || std::max(width, height) > VisLimits::pictureSide)
        return 0;
    if (height == 0)
        return std::min(width * VisLimits::pictureSide, VisLimits::picturePixels);
    return width * height > VisLimits::picturePixels ? 0 : width * height;
}

// Where the draw may not cost it, a later one loads it.
void CSpectrumAnalyzerVisComponent::LoadPicture(IVisAudioData& audio)
{
    m_picture.reset();
    if (KeptPixels() == 0) {
        m_isPictureDue = false;
    } else if (OQTakeWork(VisLimits::pictureLoadWork)) {
        m_isPictureDue = false;
        m_picture = LoadImageSource(
            m_imageFile, audio, m_pixelRectangle.Width(), m_pixelRectangle.Height());
    }
}

CSpectrumAnalyzerVisComponent::Metrics CSpectrumAnalyzerVisComponent::Measure(
    int32_t width, int32_t height) const
{
    const float w = static_cast<float>(width);
    const float h = static_cast<float>(height);
    Metrics metrics {};
    metrics.barWidth = std::max(1, OQTruncateToInt32(w * m_barWidth));
    int64_t gap = OQTruncateToInt32(m_barSpacing * w);
    if (m_barSpacing > 0)
        gap = std::max<int64_t>(gap, 1);
    metrics.peakHeight = std::max(1, OQTruncateToInt32(h * m_peakHeight));
    // A negative spacing lets bars overlap, but each still moves on.
    metrics.pitch = std::max<int64_t>(metrics.barWidth + gap, 1);
    const int64_t across = std::abs(int64_t { m_pixelRectangle.right } - m_pixelRectangle.left);
    metrics.bars = static_cast<int32_t>(std::min<int64_t>(maxBars, across / metrics.pitch));
    metrics.margin = (across - metrics.bars * metrics.pitch) / 2;
    return metrics;
}

int32_t CSpectrumAnalyzerVisComponent::Draw(IVisBuffer& buffer, IVisAudioData& audio)
{
    if (!m_prepared)
        Start();
    if (audio.GetValue(VisAudioValueChange) != 0)
        m_isPictureDue = true;
    const CVisBufferHelper picture(buffer);
    const VisAudioBlock* block = audio.GetData();
    if (!picture.Bits() || !block)
        return -1;

    const Metrics metrics = Measure(picture.Width(), picture.Height());
    const int32_t colors = TableSize();
    if (!OQTakeWork(VisLimits::spectrumBarWork * metrics.bars
            + VisLimits::gradientColorWork * std::min(colors, VisLimits::gradientTableEntries)))
        return -1;
    if (m_isPictureDue)
        LoadPicture(audio);
    m_phase += phaseStep;
    if (m_phase >= 1.0f)
        m_phase = 0;
    m_gradient.BuildTable(m_phase, colors);

    CSpectrumBarValues values(*block, m_spectrum, metrics.bars);
    m_barBoxes.clear();
    m_peakBoxes.clear();
    for (size_t bar = 0; bar < static_cast<size_t>(metrics.bars); ++bar) {
        MoveBar(bar, values.Next());
        if (m_drawPeaks)
            MovePeak(bar);
        CollectBoxes(metrics, bar);
    }
    if (m_drawSource == 1) {
        IOQImage* target = buffer.GetImage(0);
        for (const auto* boxes : { &m_barBoxes, &m_peakBoxes })
            for (size_t box = 0; m_picture && target && box < boxes->size(); ++box)
                FillFromPicture(*target, (*boxes)[box]);
        return 0;
    }
    FillBars(picture);
    for (const Box& box : m_peakBoxes)
        FillPeak(picture, box);
    return 0;
}

void CSpectrumAnalyzerVisComponent::MoveBar(size_t bar, int32_t target)
{
    int32_t velocity = m_barVelocities[bar];
    int32_t height = std::max(AddWrapped(m_barHeights[bar], velocity / 256), 0);
    velocity = LimitFall(SubtractWrapped(velocity, m_barGravity), m_barTerminalVelocity);
    if (height < target) {
        height = target;
        velocity = 0;
    }
    m_barHeights[bar] = height;
    m_barVelocities[bar] = velocity;
}

// A rising bar pushes the peak up and throws it.
void CSpectrumAnalyzerVisComponent::MovePeak(size_t bar)
{
    int32_t velocity = m_peakVelocities[bar];
    int32_t height = std::max(AddWrapped(m_peakHeights[bar], velocity / 256), 0);
    velocity = LimitFall(SubtractWrapped(velocity, m_peakGravity), m_peakTerminalVelocity);
    if (height < m_barHeights[bar]) {
        velocity = MultiplyWrapped(m_barHeights[bar] - height, m_peakThrowForce);
        height = m_barHeights[bar];
    }
    m_peakHeights[bar] = height;
    m_peakVelocities[bar] = velocity;
}

void CSpectrumAnalyzerVisComponent::CollectBoxes(const Metrics& metrics, size_t bar)
{
    const OQRect& area = m_pixelRectangle;
    const bool reversed = area.right < area.left;
    const int64_t step = metrics.pitch * static_cast<int64_t>(bar);
    const int64_t start = reversed ? area.left - step : area.left + step;
    const int64_t x1 = start + metrics.margin;
    const int64_t x2 = reversed ? x1 - metrics.barWidth : x1 + metrics.barWidth;
    const int64_t height = m_barHeights[bar];
    const int64_t peak = m_peakHeights[bar];

    if (!m_mirrored) {
        const int64_t down = int64_t { area.bottom } - area.top;
        if (m_drawBars)
            m_barBoxes.push_back({ x1, area.bottom - height * down / 1000, x2, area.bottom });
        if (m_drawPeaks) {
            const int64_t y = area.bottom - down * peak / 1000;
            m_peakBoxes.push_back({ x1, y - 2, x2, y }); // 2 rows, whatever the peak height says
        }
        return;
    }
    const int64_t middle = (int64_t { area.top } + area.bottom) / 2;
    const int64_t half = (int64_t { area.bottom } - area.top) / 2;
    if (m_drawBars) {
        m_barBoxes.push_back({ x1, middle - height * half / 1000, x2, middle });
        m_barBoxes.push_back({ x1, middle + half * height / 1000, x2, middle });
    }
    if (m_drawPeaks) {
        const int64_t away = half * peak / 1000;
        m_peakBoxes.push_back({ x1, middle - away - metrics.peakHeight, x2, middle - away });
        m_peakBoxes.push_back({ x1, middle + away, x2, middle + away + metrics.peakHeight });
    }
}

int32_t CSpectrumAnalyzerVisComponent::TableSize() const
{
    int64_t span = std::abs(int64_t { m_pixelRectangle.bottom } - m_pixelRectangle.top);
    if (m_mirrored)
        span /= 2;
    return static_cast<int32_t>(std::min<int64_t>(span + 1, std::numeric_limits<int32_t>::max()));
}

// The table has an entry for each row that a bar may have, but for areas of more rows than 31 bits
// count: there its last colour goes on.
uint32_t CSpectrumAnalyzerVisComponent::TablePixel(int64_t index) const
{
    const int64_t last = m_gradient.GetTableSize() - 1;
    return PixelFromColor(m_gradient.TableColor(static_cast<int32_t>(std::min(index, last))));
}

void CSpectrumAnalyzerVisComponent::CollectBar(const CVisBufferHelper& picture, const Box& box)
{
    const int64_t leftmost = std::min(box.left, box.right);
    const int64_t rightmost = std::max(box.left, box.right);
    if (leftmost == rightmost)
        return;
    const int32_t height = picture.Height();
    Bar bar {};
    bar.first = Clamped(leftmost, picture.Width());
    bar.count = Clamped(rightmost - 1, picture.Width()) - bar.first + 1;
    bar.highest = Clamped(std::min(box.top, box.bottom), height);
    bar.lowest = Clamped(std::max(box.top, box.bottom), height);
    bar.base = box.bottom;
    bar.isUpward = box.top <= box.bottom;
    bar.rows = std::abs(box.bottom - box.top);
    bar.tip = -1;
    if (bar.isUpward && box.top < 0)
        bar.tip = 0;
    else if (!bar.isUpward && box.top >= height)
        bar.tip = height - 1;
    if (OQTakeWork((bar.lowest - bar.highest + 1)
            * (VisLimits::fillRowWork + VisLimits::fillPixelWork * bar.count)))
        m_bars.push_back(bar);
}

// From the base line (the box's bottom entry) to its top entry, both included, in the order of the
// table. Rows outside the picture pile up on its edge row, where the last of them stays. By rows of
// the picture, of which all bars are filled in their order: memory likes that better than bar by
// bar, and threads may share the rows.
void CSpectrumAnalyzerVisComponent::FillBars(const CVisBufferHelper& picture)
{
    m_bars.clear();
    int32_t highest = picture.Height();
    int32_t lowest = -1;
    for (const Box& box : m_barBoxes)
        CollectBar(picture, box);
    for (const Bar& bar : m_bars) {
        highest = std::min(highest, bar.highest);
        lowest = std::max(lowest, bar.lowest);
    }
    OQParallelRows(highest, lowest + 1, picture.Width(), [&](int32_t top, int32_t bottom) {
        for (int32_t y = top; y < bottom; ++y)
            FillBarRow(picture, y);
    });
}

void CSpectrumAnalyzerVisComponent::FillBarRow(const CVisBufferHelper& picture, int32_t y) const
{
    uint32_t* row = picture.Bits() + (picture.Height() - 1 - int64_t { y }) * picture.Width();
    int64_t lastIndex = -1;
    uint32_t pixel = 0;
    for (const Bar& bar : m_bars) {
        if (y < bar.highest || y > bar.lowest)
            continue;
        int64_t index = bar.isUpward ? bar.base - y : y - bar.base;
        if (y == bar.tip || index > bar.rows)
            index = bar.rows;
        if (index != lastIndex) // bars beside each other mostly have the same colour
            pixel = TablePixel(index);
        lastIndex = index;
        pxvis::kernels::ReplaceColor(row + bar.first, bar.count, pixel);
    }
}

void CSpectrumAnalyzerVisComponent::FillPeak(const CVisBufferHelper& picture, const Box& box) const
{
    const auto [left, right] = std::minmax(box.left, box.right);
    const auto [top, bottom] = std::minmax(box.top, box.bottom);
    if (left == right || top == bottom)
        return;
    const int32_t first = Clamped(left, picture.Width());
    const int32_t last = Clamped(right - 1, picture.Width());
    const int32_t highest = Clamped(top, picture.Height());
    const int32_t lowest = Clamped(bottom - 1, picture.Height());
    if (!OQTakeWork(VisLimits::fillPixelWork * (lowest - highest + 1) * (last - first + 1)))
        return;
    // PeakColor is 0xRRGGBB, which is a pixel of alpha 0.
    FillBlock(picture, first, last, highest, lowest, m_peakColor.value);
}

// The picture's part under the box.
void CSpectrumAnalyzerVisComponent::FillFromPicture(IOQImage& target, const Box& box) const
{
    const auto [left, right] = std::minmax(box.left, box.right);
    const auto [top, bottom] = std::minmax(box.top, box.bottom);
    const OQSize size = target.GetSize();
    const auto within = [](int64_t position, int32_t side) {
        return static_cast<int32_t>(std::clamp<int64_t>(position, 0, side));
    };
    const OQRect part { within(left, size.cx), within(top, size.cy), within(right, size.cx),
        within(bottom, size.cy) };
    if (!OQTakeWork(VisLimits::fillPixelWork * part.Width() * part.Height()))
        return;
    target.CopyRect(*m_picture, part, part.left, part.top);
}
