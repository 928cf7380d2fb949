#include "components/CSuperTransformMap.h"

#include "components/ColumnRows.h"
#include "components/PolarTransform.h"
#include "engine2d/VisLimits.h"
#include "foundation/OQEngineContext.h"

#include <algorithm>

using pxvis::kernels::CircleDirections;
using pxvis::kernels::twoPi;

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
    m_distances = {};
    m_angles = {};
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
    const int64_t polars = m_angles.empty() ? PolarRows(height) * width : 0;
    if (!OQTakeWork(VisLimits::mapEntryWork * polars
            + (VisLimits::polarMapEntryWork + equation.GetWork()) * width * height))
        return false;
    if (m_angles.empty())
        FillPolars(width, height);
    const bool whole = PolarTransform::TakesSmallEntries(width, height)
        ? Fill(m_entries16, width, height, equation)
        : Fill(m_entries32, width, height, equation);
    if (!whole)
        Clear();
    return whole;
}

void CSuperTransformMap::FillPolars(int32_t width, int32_t height)
{
    const float radius = PolarTransform::Circle(Half(width), Half(height), 0, 0).radius;
    const auto rows = static_cast<int32_t>(PolarRows(height));
    m_distances.resize(static_cast<size_t>(rows) * static_cast<size_t>(width));
    m_angles.resize(m_distances.size());
    OQParallelRows(0, rows, width, [&](int32_t first, int32_t end) {
        for (int32_t row = first; row < end; ++row) {
            float* distances = m_distances.data() + int64_t { row } * width;
            pxvis::kernels::PolarPoints(distances, m_angles.data() + int64_t { row } * width,
                static_cast<float>(-Half(width)), 1, static_cast<float>(row - Half(height)), width);
            for (int32_t column = 0; column < width; ++column)
                distances[column] /= radius;
        }
    });
}

template <typename Entry>
bool CSuperTransformMap::Fill(
    std::vector<Entry>& entries, int32_t width, int32_t height, CMathEvaluator& equation) const
{
    entries.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 2);
    const CircleDirections circle = PolarTransform::Circle(Half(width), Half(height), 0, 0);
    double* d = &equation.Variable(equation.GetVariable(u"d", true));
    double* r = &equation.Variable(equation.GetVariable(u"r", true));
    CMathColumns together(equation, { d, r });

    const auto fillRow = [&](CMathColumns& columns, int32_t row) {
        const bool below = row > Half(height);
        const int64_t polars = int64_t { below ? 2 * Half(height) - row : row } * width;
        Entry* entry = entries.data() + int64_t { row } * width * 2;
        ForColumnPieces(width, [&](int32_t column, int32_t count) {
            const float* distances = m_distances.data() + polars + column;
            const float* angles = m_angles.data() + polars + column;
            double* distanceColumn = columns.Column(d);
            double* rotationColumn = columns.Column(r);
            for (int32_t i = 0; i < count; ++i) {
                distanceColumn[i] = double { distances[i] };
                rotationColumn[i] = double { (below ? twoPi - angles[i] : angles[i]) / twoPi };
            }
            columns.Run(count);
            int32_t places[2 * CMathColumns::kLanes];
            pxvis::kernels::CircleEntries(
                places, distanceColumn, rotationColumn, count, circle, 0, 0, 0);
            // Far outside it wraps, as the narrower entries do anywhere.
            for (int32_t i = 0; i < 2 * count; ++i)
                *entry++ = static_cast<Entry>(places[i]);
        });
    };
    return FillColumnRows(
        together, width, height, [&](CMathColumns& columns, int32_t first, int32_t end) {
            for (int32_t row = first; row < end; ++row)
                fillRow(columns, row);
        });
}
