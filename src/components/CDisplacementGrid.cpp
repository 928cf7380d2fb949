#include "components/CDisplacementGrid.h"

#include "components/ColumnRows.h"
#include "components/PolarTransform.h"
#include "kernels/DynamicTransformRow.h"

namespace {

constexpr int32_t cell = pxvis::kernels::DynamicTransformPass::cell;

int32_t PointsAlong(int32_t side)
{
    return side / cell + 1;
}

}

int64_t CDisplacementGrid::PointCount(int32_t width, int32_t height)
{
    return width > 0 && height > 0 ? int64_t { PointsAlong(width) } * PointsAlong(height) : 0;
}

int64_t CDisplacementGrid::KeptPixels(int32_t width, int32_t height)
{
    return PointCount(width, height) * 4;
}

int32_t CDisplacementGrid::HalfWidth() const
{
    return (m_width * cell + 1) / 2;
}

int32_t CDisplacementGrid::HalfHeight() const
{
    return (m_height * cell + 1) / 2;
}

void CDisplacementGrid::Resize(int32_t width, int32_t height)
{
    m_width = PointsAlong(width);
    m_height = PointsAlong(height);
    const size_t count = static_cast<size_t>(PointCount(width, height));
    m_distances.assign(count, 0);
    m_rotations.assign(count, 0);
    m_points.assign(count * 2, 0);

    const float radius = PolarTransform::Circle(HalfWidth(), HalfHeight(), 0, 0).radius;
    for (int32_t row = 0; row < m_height; ++row)
        pxvis::kernels::PolarPoints(m_distances.data() + ptrdiff_t { row } * m_width,
            m_rotations.data() + ptrdiff_t { row } * m_width, static_cast<float>(-HalfWidth()),
            cell, static_cast<float>(cell * row - HalfHeight()), m_width);
    for (float& distance : m_distances)
        distance /= radius;
    for (float& rotation : m_rotations)
        rotation /= pxvis::kernels::twoPi;
}

void CDisplacementGrid::Fill(CMathColumns& equation, const double& d, const double& r)
{
    const pxvis::kernels::CircleDirections circle = PolarTransform::Circle(HalfWidth(),
        HalfHeight(), static_cast<float>(HalfWidth()), static_cast<float>(HalfHeight()));
    double* distances = equation.Column(&d);
    double* rotations = equation.Column(&r);
    ptrdiff_t point = 0;
    for (int32_t row = 0; row < m_height; ++row) {
        ForColumnPieces(m_width, [&](int32_t column, int32_t count) {
            std::copy_n(m_distances.data() + point, count, distances);
            std::copy_n(m_rotations.data() + point, count, rotations);
            equation.Run(count);
            pxvis::kernels::CircleEntries(m_points.data() + 2 * point, distances, rotations, count,
                circle, static_cast<float>(cell * column), cell, static_cast<float>(cell * row));
            point += count;
        });
    }
}
