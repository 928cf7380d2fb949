#include "engine2d/CVisBufferHelper.h"

#include "engine2d/VisLimits.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQTruncate.h"
#include "kernels/BlendColor.h"
#include "kernels/Maths.h"

#include <algorithm>
#include <cmath>

namespace {

using BlendRow = void (*)(uint32_t* target, int32_t count, uint32_t pixel);

BlendRow RowBlendOf(int32_t mode)
{
    switch (mode) {
    case 0:
        return pxvis::kernels::ReplaceColor;
    case 1:
        return pxvis::kernels::AddColor;
    case 2:
        return pxvis::kernels::SubtractColor;
    case 3:
        return pxvis::kernels::AverageColor;
    default:
        return nullptr;
    }
}

// Rows of a disc, counted from its middle; none if first is above last.
struct DiscRows
{
    int64_t first;
    int64_t last;

    int64_t Count() const { return std::max<int64_t>(last - first + 1, 0); }
};

// Of rows that are blended into one row of the picture those that change it: each covers what the
// shorter ones behind it cover, and after 255 blends nothing changes any more.
DiscRows RowsThatCount(const DiscRows& rows)
{
    if (rows.first > rows.last)
        return rows;
    constexpr int64_t most = 255;
    const int64_t longest = std::clamp<int64_t>(0, rows.first, rows.last);
    return { std::max(rows.first, longest - most), std::min(rows.last, longest + most) };
}

}

CVisBufferHelper::CVisBufferHelper(IVisBuffer& buffer)
    : m_buffer(buffer)
    , m_bits(buffer.GetBits(0))
{
    OQSize size;
    buffer.GetSize(&size);
    m_width = size.cx;
    m_height = size.cy;
}

intptr_t CVisBufferHelper::GetImageHandle(int32_t offset)
{
    return m_buffer.GetImageHandle(offset);
}

OQSize* CVisBufferHelper::GetSize(OQSize* out)
{
    *out = { m_width, m_height };
    return out;
}

void CVisBufferHelper::Flip()
{
    m_buffer.Flip();
    m_bits = m_buffer.GetBits(0);
}

void CVisBufferHelper::DrawDisc(float d, float r, float s, int32_t color, int32_t mode)
{
    const double halfWidth = m_width * 0.5;
    const double halfHeight = m_height * 0.5;
    const double corner = std::sqrt(halfWidth * halfWidth + halfHeight * halfHeight) + 1.0;
    const int64_t radius = OQTruncateToInt32(static_cast<float>(OQTruncateToInt32(corner)) * s);
    const BlendRow blend = RowBlendOf(mode);
    if (!m_bits || !blend || radius < 0)
        return;

    const double distance = static_cast<double>(static_cast<float>(corner) * d);
    const double angle = static_cast<double>(r * 6.2831855f);
    const double centerX = pxvis::maths::Cos(angle) * distance + halfWidth;
    const double centerY = halfHeight - pxvis::maths::Sin(angle) * distance;
    const int64_t column = OQTruncateToInt32(centerX + 0.5);
    const int64_t row = OQTruncateToInt32(centerY + 0.5);

    const int64_t onTop = -row; // the disc's row that lies in the picture's first one
    const int64_t onBottom = std::max(m_height - 1 - row, onTop + 1);
    const DiscRows parts[] = {
        RowsThatCount({ -radius, std::min(radius, onTop) }),
        { std::max(-radius, onTop + 1), std::min(radius, onBottom - 1) },
        RowsThatCount({ std::max(-radius, onBottom), radius }),
    };
    const int64_t pixels = int64_t { m_width } * m_height;
    int64_t rows = 0;
    for (const DiscRows& part : parts)
        rows += part.Count();
    if (!OQTakeWork(rows
            * (VisLimits::discRowWork
                + VisLimits::discPixelWork * std::min(2 * radius + 1, pixels))))
        return;

    for (const DiscRows& part : parts) {
        for (int64_t offset = part.first; offset <= part.last; ++offset) {
            const auto square = static_cast<double>(radius * radius - offset * offset);
            const int64_t span = OQTruncateToInt64(2 * std::sqrt(square) + 0.5);
            const int64_t x = std::clamp<int64_t>(column - span / 2, 0, m_width - 1);
            const int64_t y = std::clamp<int64_t>(row + offset, 0, m_height - 1);
            const int64_t first = (m_height - 1 - y) * m_width + x;
            blend(m_bits + first, static_cast<int32_t>(std::min(span, pixels - first)),
                static_cast<uint32_t>(color));
        }
    }
}
