#include "siblings/image/ImageStretch.h"

#include "kernels/Blend.h"
#include "siblings/image/ImageDrawing.h"

#include <algorithm>

namespace pxvis::image {

Placement PlacementIn(const OQRect& rect, const Pixels& picture, bool keepShape)
{
    Placement place { rect.left, rect.top, int64_t { rect.right } - rect.left,
        int64_t { rect.bottom } - rect.top };
    if (!keepShape)
        return place;
    // Rounded, since a picture must not lose its last row to truncation.
    const auto scaled = [](int64_t size, int64_t by, int64_t per) {
        return std::max<int64_t>((size * by + per / 2) / per, 1);
    };
    const Placement whole = place;
    if (whole.width * picture.height > whole.height * picture.width)
        place.width = scaled(whole.height, picture.width, picture.height);
    else
        place.height = scaled(whole.width, picture.height, picture.width);
    place.left += (whole.width - place.width) / 2;
    place.top += (whole.height - place.height) / 2;
    return place;
}

OQRect VisiblePart(const Placement& place, int32_t width, int32_t height)
{
    const auto within = [](int64_t position, int32_t side) {
        return static_cast<int32_t>(std::clamp<int64_t>(position, 0, side));
    };
    return { within(place.left, width), within(place.top, height),
        within(place.left + place.width, width), within(place.top + place.height, height) };
}

void ImageStretch::Store(const Pixels& target, const Pixels& source)
{
    StorePart(target, source, { 0, 0, target.width, target.height }, Bounds(target));
}

void ImageStretch::StorePart(
    const Pixels& target, const Pixels& source, const Placement& place, const OQRect& visible)
{
    PrepareColumns(visible.left - place.left, target.width, place.width, source.width);
    for (int32_t y = 0; y < target.height; ++y)
        kernels::ResampleStoreRow(target.At(0, y),
            SumsOfRow(source, visible.top + y - place.top, place.height), target.width);
}

void ImageStretch::Blend(const Pixels& target, const Pixels& source, const Placement& place)
{
    const OQRect visible = VisiblePart(place, target.width, target.height);
    if (IsEmpty(visible))
        return;
    const int32_t count = visible.Width();
    if (place.width == source.width && place.height == source.height) {
        const auto left = static_cast<int32_t>(visible.left - place.left);
        for (int32_t y = visible.top; y < visible.bottom; ++y)
            kernels::BlendRow(target.At(visible.left, y),
                source.At(left, static_cast<int32_t>(y - place.top)), count);
        return;
    }
    PrepareColumns(visible.left - place.left, count, place.width, source.width);
    m_row.resize(static_cast<size_t>(count));
    for (int32_t y = visible.top; y < visible.bottom; ++y) {
        kernels::ResampleStoreRow(
            m_row.data(), SumsOfRow(source, y - place.top, place.height), count);
        kernels::BlendRow(target.At(visible.left, y), m_row.data(), count);
    }
}

void ImageStretch::PrepareColumns(
    int64_t firstColumn, int32_t count, int64_t width, int32_t sourceWidth)
{
    for (Mixed& mixed : m_mixed)
        mixed.row = -1; // the source's pixels may be others by now
    const auto columns = static_cast<size_t>(count);
    if (m_firstColumn == firstColumn && m_width == width && m_sourceWidth == sourceWidth
        && m_spans.size() == columns)
        return;
    m_width = 0; // in case that memory ends below
    m_spans.resize(columns);
    m_weights.clear();
    m_rowWeights.resize(static_cast<size_t>(kernels::MaxResampleCount(width, sourceWidth)));
    for (size_t i = 0; i < columns; ++i) {
        m_spans[i] = kernels::ResampleWeights(
            m_rowWeights.data(), firstColumn + static_cast<int64_t>(i), width, sourceWidth);
        m_weights.insert(
            m_weights.end(), m_rowWeights.begin(), m_rowWeights.begin() + m_spans[i].count);
    }
    m_sums.resize(4 * columns);
    for (Mixed& mixed : m_mixed)
        mixed.values.resize(4 * columns);
    m_firstColumn = firstColumn;
    m_width = width;
    m_sourceWidth = sourceWidth;
}

const uint32_t* ImageStretch::SumsOfRow(const Pixels& source, int64_t row, int64_t height)
{
    m_rowWeights.resize(static_cast<size_t>(kernels::MaxResampleCount(height, source.height)));
    const kernels::ResampleSpan span
        = kernels::ResampleWeights(m_rowWeights.data(), row, height, source.height);
    std::fill(m_sums.begin(), m_sums.end(), 0);
    for (int32_t k = 0; k < span.count; ++k)
        kernels::ResampleAddRow(m_sums.data(), MixedRow(source, span.first + k),
            m_rowWeights[static_cast<size_t>(k)], static_cast<int32_t>(m_spans.size()));
    return m_sums.data();
}

const uint16_t* ImageStretch::MixedRow(const Pixels& source, int32_t row)
{
    Mixed& mixed = m_mixed[static_cast<size_t>(row & 1)];
    if (mixed.row != row) {
        kernels::ResampleRow(mixed.values.data(), source.At(0, row), m_spans.data(),
            m_weights.data(), static_cast<int32_t>(m_spans.size()));
        mixed.row = row;
    }
    return mixed.values.data();
}

}
