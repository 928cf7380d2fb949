#include "components/CDisplacementGrid.h"

#include "components/PolarTransform.h"
#include "expression/CMathEvaluator.h"
#include "foundation/OQTruncate.h"
#include "kernels/DynamicTransformRow.h"

using PolarTransform::Circle;

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
    m_places.assign(count, {});
    m_points.assign(count * 2, 0);

    const Circle circle(HalfWidth(), HalfHeight());
    Place* place = m_places.data();
    for (int32_t row = 0; row < m_height; ++row) {
        const float y = static_cast<float>(cell * row - HalfHeight());
        for (int32_t column = 0; column < m_width; ++column, ++place) {
            const float x = static_cast<float>(cell * column - HalfWidth());
            const PolarTransform::Polar polar = circle.PolarAt(x, y);
            *place = { polar.distance, polar.angle / PolarTransform::twoPi };
        }
    }
}

void CDisplacementGrid::Fill(CMathEvaluator& equation, double& d, double& r)
{
    const Circle circle(HalfWidth(), HalfHeight());
    const float halfWidth = static_cast<float>(HalfWidth());
    const float halfHeight = static_cast<float>(HalfHeight());
    const Place* place = m_places.data();
    int32_t* point = m_points.data();
    for (int32_t row = 0; row < m_height; ++row) {
        const float y = static_cast<float>(cell * row);
        for (int32_t column = 0; column < m_width; ++column, ++place, point += 2) {
            const float x = static_cast<float>(cell * column);
            d = double { place->d };
            r = double { place->r };
            equation.Evaluate();
            const Circle::Offset offset = circle.OffsetOf(d, r);
            point[0] = OQTruncateToInt32((offset.x + halfWidth - x) * 32.0f);
            point[1] = OQTruncateToInt32((halfHeight - offset.y - y) * 32.0f);
        }
    }
}
