#include "components/CTransformMap.h"

#include "components/PolarTransform.h"
#include "engine2d/VisLimits.h"
#include "expression/CMathEvaluator.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQTruncate.h"
#include "kernels/Maths.h"

#include <algorithm>
#include <cmath>

namespace {

namespace maths = pxvis::maths;

using PolarTransform::TakesSmallEntries;
using PolarTransform::twoPi;

constexpr uint16_t clipped16 = 32767; // not a mark: scroll and zoom move it like any position
constexpr uint32_t clipped32 = 0x7FFFFFFF;

float Radius(int32_t mode, int32_t halfWidth, int32_t halfHeight)
{
    switch (mode) {
    case 0:
        return static_cast<float>(std::min(halfWidth, halfHeight));
    case 1:
        return static_cast<float>(std::max(halfWidth, halfHeight));
    case 3:
        return static_cast<float>(halfWidth);
    case 4:
        return static_cast<float>(halfHeight);
    default:
        return std::sqrt(static_cast<float>(halfWidth * halfWidth + halfHeight * halfHeight))
            + 1.0f;
    }
}

uint64_t Square(int64_t value)
{
    return static_cast<uint64_t>(value) * static_cast<uint64_t>(value);
}

}

void CTransformMap::Clear()
{
    m_width = 0;
    m_height = 0;
    m_entries16.clear();
    m_entries32.clear();
}

bool CTransformMap::IsBuiltFor(int32_t width, int32_t height) const
{
    return m_width == width && m_height == height && (Entries16() || Entries32());
}

int64_t CTransformMap::KeptPixels(int32_t width, int32_t height)
{
    return int64_t { width } * height * (TakesSmallEntries(width, height) ? 1 : 2);
}

bool CTransformMap::Build(int32_t width, int32_t height, const Settings& settings)
{
    Clear();
    if (!OQTakeWork(VisLimits::compileCharacterWork * settings.equation->GetLength()))
        return false;
    // Lives for this build only: a variable of the script's own starts at 0 and runs on from pixel
    // to pixel.
    CMathEvaluator equation;
    equation.SetEquation(*settings.equation);
    if (!OQTakeWork((VisLimits::mapEntryWork + equation.GetWork()) * width * height))
        return false;
    m_width = width;
    m_height = height;
    if (TakesSmallEntries(width, height))
        Fill(m_entries16, clipped16, equation, settings);
    else
        Fill(m_entries32, clipped32, equation, settings);
    return true;
}

template <typename Entry>
void CTransformMap::Fill(
    std::vector<Entry>& entries, Entry clipped, CMathEvaluator& equation, const Settings& settings)
{
    entries.resize(static_cast<size_t>(m_width) * static_cast<size_t>(m_height) * 2);
    const int32_t halfWidth = m_width / 2;
    const int32_t halfHeight = m_height / 2;
    const float radius = Radius(settings.radiusMode, halfWidth, halfHeight);
    const int32_t centerX = OQTruncateToInt32(
        static_cast<float>(halfWidth) + static_cast<float>(m_width) * settings.center.x * 0.5f);
    const int32_t centerY = OQTruncateToInt32(
        static_cast<float>(halfHeight) + static_cast<float>(m_height) * settings.center.y * 0.5f);
    const float originX = static_cast<float>(centerX);
    const float originY = static_cast<float>(centerY);

    double& d = equation.Variable(equation.GetVariable(u"d", true));
    double& r = equation.Variable(equation.GetVariable(u"r", true));
    double& x = equation.Variable(equation.GetVariable(u"x", true));
    double& y = equation.Variable(equation.GetVariable(u"y", true));

    Entry* entry = entries.data();
    for (int32_t row = 0; row < m_height; ++row) {
        for (int32_t column = 0; column < m_width; ++column, entry += 2) {
            const int64_t dx = int64_t { column } - centerX;
            const int64_t dy = int64_t { centerY } - row;
            const float distance = std::sqrt(static_cast<float>(Square(dx) + Square(dy)));
            // Clockwise on the screen: dy is positive above the centre.
            const float angle
                = PolarTransform::Angle(static_cast<float>(dx), static_cast<float>(dy), distance);
            d = double { distance / radius };
            r = double { angle / twoPi };
            x = double { static_cast<float>(dx) / radius };
            y = double { static_cast<float>(dy) / radius };
            equation.Evaluate();

            const float newDistance = static_cast<float>(d) * radius;
            const float newAngle = static_cast<float>(r) * twoPi;
            if (settings.clipAtRadius && newDistance > radius) {
                entry[0] = clipped;
                entry[1] = clipped;
                continue;
            }
            const double w = double { twoPi - newAngle };
            const float cosine = static_cast<float>(maths::Cos(w));
            const float sine = static_cast<float>(maths::Sin(w));
            // A position below 0 wraps to one far outside.
            entry[0]
                = static_cast<Entry>(OQTruncateToInt32((cosine * newDistance + originX) * 32.0f));
            entry[1]
                = static_cast<Entry>(OQTruncateToInt32((originY - sine * newDistance) * 32.0f));
        }
    }
}
