#include "components/COscilloscopeVisComponent.h"

#include "components/GradientPhase.h"
#include "components/OscilloscopePresets.h"
#include "components/PolarPoint.h"
#include "engine2d/CVisBufferHelper.h"
#include "engine2d/VisLimits.h"
#include "engine2d/VisPresets.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQNumberText.h"
#include "foundation/OQTruncate.h"
#include "kernels/DrawWaveRun.h"
#include "kernels/Maths.h"
#include "kernels/PixelFromColor.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <pxvis/IVisAudioData.h>

namespace {

enum DrawStyle : uint32_t
{
    DrawStyleFilled = 1, // the run starts at the line
    DrawStyleMirrored = 2, // the run starts at the opposite swing
    DrawStyleAbsolute = 4,
};

constexpr double lastSample = 1023;

// Far outside any picture, and so near that a product of two lengths fits 64 bits.
constexpr double farthest = 1 << 30;

int64_t RoundedPosition(double value)
{
    return OQTruncateToInt32(value + 0.5);
}

// Brings `position` into 0 to size - 1 and moves `other` with it along the line that runs from
// (from, otherFrom) to (to, otherTo). False if the line can't come there.
bool MoveInside(int64_t& position, int64_t& other, int32_t size, int64_t from, int64_t to,
    int64_t otherFrom, int64_t otherTo)
{
    const int64_t edge = std::clamp<int64_t>(position, 0, size - 1);
    if (edge == position)
        return true;
    if (from == to)
        return false;
    const double moved = static_cast<double>(otherFrom)
        + static_cast<double>(otherTo - otherFrom) * static_cast<double>(edge - from)
            / static_cast<double>(to - from);
    position = edge;
    other = OQTruncateToInt32(std::clamp(std::round(moved), -farthest, farthest));
    return true;
}

}

COscilloscopeVisComponent::COscilloscopeVisComponent()
{
    Bind(u"LineEquation", m_lineEquation, u"r1=0+t;d1=.5;r2=.5+t;d2=.5;t=t+0.01",
        &OscilloscopeLinePresets());
    Bind(u"Gradient", m_gradient, GradientPresetsWithTakeRed());
    BindChoice(u"FillStyle", m_fillStyle, 1, OscilloscopeFillPresets());
    Bind(u"DrawStyle", m_drawStyle, 2, &OscilloscopeDrawPresets());
    BindChoice(u"Channel", m_channel, 0, OscilloscopeChannelPresets());
    Bind(u"MaxHeight", m_maxHeight, 0.15f);
    LoadProperties(nullptr);
}

int32_t COscilloscopeVisComponent::Randomize()
{
    LoadProperties(nullptr);
    m_lineEquation = RandomPresetValue(OscilloscopeLinePresets());
    m_fillStyle = OQTextToInt(RandomPresetValue(OscilloscopeFillPresets()).GetText());
    m_drawStyle = OQTextToInt(RandomPresetValue(OscilloscopeDrawPresets()).GetText());
    m_gradient.SetText(RandomPresetValue(GradientPresetsWithTakeRed()));
    m_isPlain = false;
    return 0;
}

int32_t COscilloscopeVisComponent::Prepare(IVisBuffer&, IVisAudioData&)
{
    if (!OQTakeWork(VisLimits::compileCharacterWork * m_lineEquation.GetLength()))
        return -1;
    m_equation.Compile(m_lineEquation);
    // The letters count, wherever they stand; the names of the variables don't.
    m_isPlain = m_lineEquation.Find(u'x') >= 0 && m_lineEquation.Find(u'y') >= 0;
    static constexpr std::array polarNames { u"r1", u"d1", u"r2", u"d2" };
    static constexpr std::array plainNames { u"x1", u"y1", u"x2", u"y2" };
    const auto& names = m_isPlain ? plainNames : polarNames;
    for (size_t i = 0; i < names.size(); ++i)
        m_ends[i] = m_equation.StartVariable(names[i]);
    m_prepared = true;
    return 0;
}

int32_t COscilloscopeVisComponent::Draw(IVisBuffer& buffer, IVisAudioData& audio)
{
    if (!m_prepared && Prepare(buffer, audio) != 0)
        return -1;
    const CVisBufferHelper picture(buffer);
    const VisAudioBlock* block = audio.GetData();
    if (!picture.Bits() || !block)
        return -1;

    m_equation.Run(audio);
    m_phase = NextGradientPhase(m_phase);
    const Line raw = FindLine(picture.Width(), picture.Height());
    Line line = raw;
    if (!Clip(line, picture.Width(), picture.Height()) || Steps(line) == 0)
        return 0;

    const int32_t side = std::min(picture.Width(), picture.Height());
    // Below 2^31 - 1, since no float lies there. A negative one, and one out of range, is a plain
    // line.
    const int32_t maxSwing = std::max(OQTruncateToInt32(static_cast<float>(side) * m_maxHeight), 0);
    const int32_t colors = maxSwing + 1;
    if (!OQTakeWork(
            VisLimits::gradientColorWork * std::min(colors, VisLimits::gradientTableEntries)))
        return -1;
    m_gradient.BuildTable(m_phase, colors);
    DrawWave(picture, *block, raw, line, maxSwing);
    return 0;
}

COscilloscopeVisComponent::Line COscilloscopeVisComponent::FindLine(
    int32_t width, int32_t height) const
{
    const auto place = [&](double first, double second) {
        return m_isPlain ? PicturePoint { width * first, height * second }
                         : PolarPoint(width, height, first, second);
    };
    const PicturePoint a = place(*m_ends[0], *m_ends[1]);
    const PicturePoint b = place(*m_ends[2], *m_ends[3]);
    return { RoundedPosition(a.x), RoundedPosition(a.y), RoundedPosition(b.x),
        RoundedPosition(b.y) };
}

// Both steps of both ends go along the line as it was, so that its slope stays. A line beside the
// picture ends as a point, but for one that passes its corner by less than a pixel.
bool COscilloscopeVisComponent::Clip(Line& line, int32_t width, int32_t height)
{
    const Line raw = line;
    return MoveInside(line.ay, line.ax, height, raw.ay, raw.by, raw.ax, raw.bx)
        && MoveInside(line.ax, line.ay, width, raw.ax, raw.bx, raw.ay, raw.by)
        && MoveInside(line.by, line.bx, height, raw.ay, raw.by, raw.ax, raw.bx)
        && MoveInside(line.bx, line.by, width, raw.ax, raw.bx, raw.ay, raw.by);
}

int64_t COscilloscopeVisComponent::Steps(const Line& line)
{
    return std::max(std::abs(line.by - line.ay), std::abs(line.bx - line.ax));
}

void COscilloscopeVisComponent::DrawWave(const CVisBufferHelper& picture,
    const VisAudioBlock& block, const Line& raw, const Line& line, int32_t maxSwing) const
{
    const int64_t wayX = line.bx - line.ax;
    const int64_t wayY = line.by - line.ay;
    const double slope = wayX == 0 ? 1.0e30 : static_cast<double>(wayY) / static_cast<double>(wayX);
    const double angle = pxvis::maths::Atan(slope);
    pxvis::kernels::WaveRunPlace place;
    place.sine = pxvis::maths::Sin(angle);
    place.cosine = pxvis::maths::Cos(angle);

    const bool isSteep = std::abs(raw.bx - raw.ax) <= std::abs(raw.by - raw.ay);
    const int64_t rawStart = isSteep ? raw.ay : raw.ax;
    const auto rawLength = static_cast<double>((isSteep ? raw.by : raw.bx) - rawStart);
    const ptrdiff_t width = picture.Width();
    uint32_t* topLeft = picture.Bits() + (picture.Height() - 1) * width;
    const auto drawStyle = static_cast<uint32_t>(m_drawStyle);
    const int64_t pixelWork = VisLimits::scopePixelWork
        + (maxSwing < VisLimits::gradientTableEntries ? 0 : VisLimits::gradientColorWork);

    int64_t lastSwing = 0;
    const int64_t steps = Steps(line);
    for (int64_t i = 0; i < steps; ++i) {
        place.x = line.ax + i * wayX / steps;
        place.y = line.ay + i * wayY / steps;
        // By the line as it was: what is cut off takes its part of the wave along.
        const auto way = static_cast<double>((isSteep ? place.y : place.x) - rawStart);
        const double sample = std::clamp(way * 1024.0 / rawLength, 0.0, lastSample);
        int64_t swing = Swing(block, static_cast<size_t>(sample), maxSwing);
        if (line.bx < line.ax)
            swing = -swing;
        if (drawStyle & DrawStyleAbsolute)
            swing = std::abs(swing);

        int64_t start = i == 0 ? swing : lastSwing;
        if (drawStyle & DrawStyleFilled)
            start = 0;
        if (drawStyle & DrawStyleMirrored)
            start = -swing;
        lastSwing = swing;

        const auto [first, last] = std::minmax(start, swing);
        if (!OQTakeWork(VisLimits::scopePointWork + pixelWork * (last - first + 1)))
            return;
        std::array<uint32_t, 256> pixels;
        for (int64_t from = first; from <= last; from += std::ssize(pixels)) {
            const auto count
                = static_cast<int32_t>(std::min<int64_t>(last - from + 1, std::ssize(pixels)));
            for (int32_t j = 0; j < count; ++j)
                pixels[static_cast<size_t>(j)] = RunPixel(swing, from + j);
            pxvis::kernels::DrawWaveRun(topLeft, -width, picture.Width(), picture.Height(), place,
                from, count, pixels.data());
        }
    }
}

int64_t COscilloscopeVisComponent::Swing(
    const VisAudioBlock& block, size_t sample, int32_t maxSwing) const
{
    const int64_t left = block.waveform[0][sample];
    const int64_t right = block.waveform[1][sample];
    const int64_t level = m_channel == 1 ? left : m_channel == 2 ? right : (left + right) / 2;
    return level * maxSwing / 128;
}

uint32_t COscilloscopeVisComponent::RunPixel(int64_t swing, int64_t offset) const
{
    const int64_t tip = std::abs(swing);
    int64_t index = std::max<int64_t>(tip - std::abs(offset), 0);
    if (m_fillStyle == 0)
        index = tip;
    else if (m_fillStyle == 2)
        index = std::abs(offset);
    return pxvis::kernels::PixelFromColor(m_gradient.TableColor(static_cast<int32_t>(index)));
}
