#include "components/CStarfieldVisComponent.h"

#include "engine2d/CVisBufferHelper.h"
#include "engine2d/VisLimits.h"
#include "engine2d/VisPresets.h"
#include "foundation/OQEngineContext.h"
#include "kernels/PixelFromColor.h"
#include "kernels/Wrapped.h"

#include <algorithm>
#include <array>

namespace {

using pxvis::kernels::AddWrapped;
using pxvis::kernels::MultiplyWrapped;
using pxvis::kernels::Star;
using pxvis::kernels::SubtractWrapped;

constexpr int32_t colors = 256;
constexpr float phaseStep = 0.01f;

// Along one axis: a number below `range`, whose middle comes to lie in the picture's.
int32_t PlaceOfBirth(int32_t range, int32_t side)
{
    return SubtractWrapped(AddWrapped(OQRand() % range, side / 2), range / 2);
}

}

CStarfieldVisComponent::CStarfieldVisComponent()
{
    Bind(u"CreationDistance", m_creationDistance, 8000);
    Bind(u"CreationOffsetScale", m_creationOffsetScale, 8);
    Bind(u"StarDensity", m_starDensity, 10);
    Bind(u"Speed", m_speed, 50);
    Bind(u"StarColorGradient", m_gradient, GradientPresets());
    LoadProperties(nullptr);
}

// The stars go on from where they are.
int32_t CStarfieldVisComponent::LoadProperties(const CVisPropertyList* list)
{
    m_phase = 0;
    return CRowVisComponent::LoadProperties(list);
}

// Nothing without a rectangle: what is counted before the layers are sized would be taken from
// their images.
int64_t CStarfieldVisComponent::KeptPixels() const
{
    if (m_rect.Width() <= 0 || m_rect.Height() <= 0)
        return 0;
    return int64_t { VisLimits::stars } * static_cast<int64_t>(sizeof(Star) / sizeof(uint32_t));
}

int32_t CStarfieldVisComponent::Draw(IVisBuffer& buffer, IVisAudioData&)
{
    const CVisBufferHelper picture(buffer);
    const auto count = static_cast<int32_t>(m_stars.size());
    if (!picture.Bits()
        || !OQTakeWork(VisLimits::gradientColorWork * colors + VisLimits::starWork * count))
        return -1;

    m_phase += phaseStep;
    if (m_phase > 1.0f)
        m_phase = 0;
    m_gradient.BuildTable(m_phase, colors);
    std::array<uint32_t, colors> pixels;
    for (int32_t i = 0; i < colors; ++i)
        pixels[static_cast<size_t>(i)] = pxvis::kernels::PixelFromColor(m_gradient.TableColor(i));

    const int32_t kept = pxvis::kernels::DrawStars(m_stars.data(), count,
        { picture.Bits(), picture.Width(), picture.Height(), pixels.data(), m_creationDistance,
            m_speed });
    m_stars.resize(static_cast<size_t>(kept));
    AddStars(picture.Width(), picture.Height());
    return 0;
}

void CStarfieldVisComponent::AddStars(int32_t width, int32_t height)
{
    const int32_t rangeX = MultiplyWrapped(width, m_creationOffsetScale);
    const int32_t rangeY = MultiplyWrapped(height, m_creationOffsetScale);
    if (m_starDensity < 1 || rangeX == 0 || rangeY == 0)
        return;
    const auto alive = static_cast<int32_t>(m_stars.size());
    const int32_t births = std::min(OQRand() % m_starDensity, VisLimits::stars - alive);
    if (!OQTakeWork(VisLimits::starWork * births))
        return;
    // Grows by halves, but not past what KeptPixels tells.
    const auto wanted = static_cast<size_t>(alive + births);
    if (wanted > m_stars.capacity())
        m_stars.reserve(std::min(wanted + wanted / 2, static_cast<size_t>(VisLimits::stars)));
    for (int32_t i = 0; i < births; ++i) {
        const int32_t x = PlaceOfBirth(rangeX, width);
        const int32_t y = PlaceOfBirth(rangeY, height);
        m_stars.push_back({ x, y, m_creationDistance });
    }
}
