#include "components/CBlobOscilloscopeVisComponent.h"

#include "components/GradientPhase.h"
#include "components/PolarPoint.h"
#include "engine2d/CVisBufferHelper.h"
#include "engine2d/VisLimits.h"
#include "engine2d/VisPresets.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQTruncate.h"
#include "kernels/DrawRay.h"
#include "kernels/Maths.h"
#include "kernels/PixelFromColor.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <pxvis/IVisAudioData.h>

namespace {

// To the digits that the number of rays, one more or less, depends on.
constexpr double fullTurn = 6.2831852;

}

CBlobOscilloscopeVisComponent::CBlobOscilloscopeVisComponent()
{
    Bind(u"Gradient", m_gradient, GradientPresets());
    Bind(u"MaxDeltaRadius", m_maxDeltaRadius, 0.2f);
    Bind(u"BaseRadius", m_baseRadius, 0.12f);
    Bind(u"LocationEquation", m_locationEquation, u"r=0;d=0;");
    LoadProperties(nullptr);
}

int32_t CBlobOscilloscopeVisComponent::Prepare(IVisBuffer&, IVisAudioData&)
{
    if (!OQTakeWork(VisLimits::compileCharacterWork * m_locationEquation.GetLength()))
        return -1;
    m_phase = 0;
    m_location.Compile(m_locationEquation);
    m_turns = m_location.StartVariable(u"r");
    m_distance = m_location.StartVariable(u"d");
    m_prepared = true;
    return 0;
}

int32_t CBlobOscilloscopeVisComponent::Draw(IVisBuffer& buffer, IVisAudioData& audio)
{
    if (!m_prepared && Prepare(buffer, audio) != 0)
        return -1;
    const CVisBufferHelper picture(buffer);
    const VisAudioBlock* block = audio.GetData();
    if (!picture.Bits() || !block)
        return -1;

    m_location.Run(audio);
    m_phase = NextGradientPhase(m_phase);
    const auto width = static_cast<float>(picture.Width());
    const int64_t swing = OQTruncateToInt32(width * m_maxDeltaRadius);
    const int64_t base = OQTruncateToInt32(width * m_baseRadius);
    if (swing + base < 0)
        return 0;
    // No ray is longer inside the picture, whatever its direction.
    const int32_t longestRay = picture.Width() + picture.Height();
    if (!BuildPixels(swing + base, longestRay))
        return -1;
    DrawRays(picture, block->waveform[0], swing, base, longestRay);
    return 0;
}

// The colours of the gradient over `radius` pixels, as far as a ray can reach.
bool CBlobOscilloscopeVisComponent::BuildPixels(int64_t radius, int32_t longestRay)
{
    const auto colors
        = static_cast<int32_t>(std::min<int64_t>(radius + 1, std::numeric_limits<int32_t>::max()));
    const int32_t reached = std::min(colors, longestRay);
    const int32_t kept = std::min(colors, VisLimits::gradientTableEntries);
    if (!OQTakeWork(VisLimits::gradientColorWork * (int64_t { kept } + reached)))
        return false;
    m_gradient.BuildTable(m_phase, colors);
    m_pixels.resize(static_cast<size_t>(reached));
    for (int32_t i = 0; i < reached; ++i)
        m_pixels[static_cast<size_t>(i)] = pxvis::kernels::PixelFromColor(m_gradient.TableColor(i));
    return true;
}

void CBlobOscilloscopeVisComponent::DrawRays(const CVisBufferHelper& picture, const int8_t* wave,
    int64_t swing, int64_t base, int32_t longestRay) const
{
    const PicturePoint middle
        = PolarPoint(picture.Width(), picture.Height(), *m_turns, *m_distance);
    const double x = OQTruncateToInt32(middle.x);
    const double y = OQTruncateToInt32(middle.y);
    const ptrdiff_t width = picture.Width();
    uint32_t* topLeft = picture.Bits() + (picture.Height() - 1) * width;

    // Infinite where the radius is 0: there is one ray then.
    const double step = fullTurn / (static_cast<double>(swing + base) * 4.0);
    int64_t pixelsLeft = VisLimits::blobRayPixels;
    for (double angle = 0; angle < fullTurn && pixelsLeft > 0; angle += step) {
        // There and back, so that the blob closes.
        const double turn = angle / fullTurn;
        const double half = turn < 0.5 ? turn : 1.0 - turn;
        const int8_t sample = wave[static_cast<size_t>(2 * half * 1023.0)];
        const double length
            = sample * 0.0078125 * static_cast<double>(swing) + static_cast<double>(base);
        const auto count = static_cast<int32_t>(
            std::clamp<double>(std::ceil(length), 0, static_cast<double>(longestRay)));
        if (!OQTakeWork(VisLimits::rayWork + VisLimits::rayPixelWork * count))
            return;
        if (count > 0)
            pixelsLeft -= pxvis::kernels::DrawRay(topLeft, -width, picture.Width(),
                picture.Height(), x, y, pxvis::maths::Cos(angle), pxvis::maths::Sin(angle),
                static_cast<int32_t>(std::min<int64_t>(count, pixelsLeft)), m_pixels.data(),
                static_cast<int32_t>(m_pixels.size()));
        --pixelsLeft; // a ray without a pixel costs something, too
    }
}
