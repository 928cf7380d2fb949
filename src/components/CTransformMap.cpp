#include "components/CTransformMap.h"

#include "components/ColumnRows.h"
#include "components/PolarTransform.h"
#include "engine2d/VisLimits.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQTruncate.h"
#include "kernels/MapPoints.h"

#include <algorithm>
#include <cmath>

namespace {

using PolarTransform::TakesSmallEntries;
using pxvis::kernels::TransformCenter;

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

void StoreEntries(uint16_t* entries, const double* d, const double* r, int32_t count,
    const TransformCenter& center, bool clips, uint16_t clipped)
{
    pxvis::kernels::TransformEntries16(entries, d, r, count, center, clips, clipped);
}

void StoreEntries(uint32_t* entries, const double* d, const double* r, int32_t count,
    const TransformCenter& center, bool clips, uint32_t clipped)
{
    pxvis::kernels::TransformEntries32(entries, d, r, count, center, clips, clipped);
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
    if (TakesSmallEntries(width, height) ? Fill(m_entries16, clipped16, equation, settings)
                                         : Fill(m_entries32, clipped32, equation, settings))
        return true;
    Clear();
    return false;
}

template <typename Entry>
bool CTransformMap::Fill(
    std::vector<Entry>& entries, Entry clipped, CMathEvaluator& equation, const Settings& settings)
{
    entries.resize(static_cast<size_t>(m_width) * static_cast<size_t>(m_height) * 2);
    const int32_t halfWidth = m_width / 2;
    const int32_t halfHeight = m_height / 2;
    TransformCenter center;
    center.radius = Radius(settings.radiusMode, halfWidth, halfHeight);
    center.x = OQTruncateToInt32(
        static_cast<float>(halfWidth) + static_cast<float>(m_width) * settings.center.x * 0.5f);
    center.y = OQTruncateToInt32(
        static_cast<float>(halfHeight) + static_cast<float>(m_height) * settings.center.y * 0.5f);

    double* d = &equation.Variable(equation.GetVariable(u"d", true));
    double* r = &equation.Variable(equation.GetVariable(u"r", true));
    double* x = &equation.Variable(equation.GetVariable(u"x", true));
    double* y = &equation.Variable(equation.GetVariable(u"y", true));
    CMathColumns together(equation, { d, r, x, y });
    const auto fillRows = [&](CMathColumns& columns, int32_t first, int32_t end) {
        for (int32_t row = first; row < end; ++row) {
            Entry* entry = entries.data() + int64_t { row } * m_width * 2;
            ForColumnPieces(m_width, [&](int32_t column, int32_t count) {
                pxvis::kernels::TransformPoints(columns.Column(d), columns.Column(r),
                    columns.Column(x), columns.Column(y), center, column, row, count);
                columns.Run(count);
                StoreEntries(entry + int64_t { column } * 2, columns.Column(d), columns.Column(r),
                    count, center, settings.clipAtRadius, clipped);
            });
        }
    };
    return FillColumnRows(together, m_width, m_height, fillRows);
}
