#include "components/CSuperTransformMap.h"

#include "engine2d/VisLimits.h"
#include "expression/CMathEvaluator.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQTruncate.h"

#include <algorithm>

using PolarTransform::Circle;
using PolarTransform::Polar;

namespace {

// Of the centre, and of the sides at once.
int32_t Half(int32_t side)
{
    return (side + 1) / 2;
}

int64_t PolarRows(int32_t height)
{
    return std::min(Half(height) + 1, height);
}

}

void CSuperTransformMap::Clear()
{
    m_polars = {};
    m_entries16 = {};
    m_entries32 = {};
}

int64_t CSuperTransformMap::KeptPixels(int32_t width, int32_t height)
{
    if (width <= 0 || height <= 0)
        return 0;
    const int64_t entryPixels = PolarTransform::TakesSmallEntries(width, height) ? 1 : 2;
    return PolarRows(height) * width * 2 + int64_t { width } * height * entryPixels;
}

bool CSuperTransformMap::Build(int32_t width, int32_t height, CMathEvaluator& equation)
{
    const int64_t polars = m_polars.empty() ? PolarRows(height) * width : 0;
    if (!OQTakeWork(VisLimits::mapEntryWork * polars
            + (VisLimits::polarMapEntryWork + equation.GetWork()) * width * height))
        return false;
    if (m_polars.empty())
        FillPolars(width, height);
    if (PolarTransform::TakesSmallEntries(width, height))
        Fill(m_entries16, width, height, equation);
    else
        Fill(m_entries32, width, height, equation);
    return true;
}

void CSuperTransformMap::FillPolars(int32_t width, int32_t height)
{
    const Circle circle(Half(width), Half(height));
    m_polars.resize(static_cast<size_t>(PolarRows(height)) * static_cast<size_t>(width));
    Polar* polar = m_polars.data();
    for (int32_t row = 0; row < PolarRows(height); ++row) {
        const float y = static_cast<float>(row - Half(height));
        for (int32_t column = 0; column < width; ++column, ++polar)
            *polar = circle.PolarAt(static_cast<float>(column - Half(width)), y);
    }
}

template <typename Entry>
void CSuperTransformMap::Fill(
    std::vector<Entry>& entries, int32_t width, int32_t height, CMathEvaluator& equation) const
{
    entries.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 2);
    const Circle circle(Half(width), Half(height));
    double& d = equation.Variable(equation.GetVariable(u"d", true));
    double& r = equation.Variable(equation.GetVariable(u"r", true));
    Entry* entry = entries.data();
    for (int32_t row = 0; row < height; ++row) {
        const bool below = row > Half(height);
        const int64_t polarRow = below ? 2 * Half(height) - row : row;
        const Polar* polar = m_polars.data() + polarRow * width;
        for (int32_t column = 0; column < width; ++column, ++polar, entry += 2) {
            const float angle = below ? PolarTransform::twoPi - polar->angle : polar->angle;
            d = double { polar->distance };
            r = double { angle / PolarTransform::twoPi };
            equation.Evaluate();
            const Circle::Offset offset = circle.OffsetOf(d, r);
            // Far outside it wraps, as the narrower entries do anywhere.
            entry[0] = static_cast<Entry>(OQTruncateToInt32(offset.x * 32.0f));
            entry[1] = static_cast<Entry>(OQTruncateToInt32(-offset.y * 32.0f));
        }
    }
}
