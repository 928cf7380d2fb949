#include "siblings/image/TextMask.h"

#include "kernels/BlendCoverage.h"
#include "siblings/image/GlyphRuns.h"
#include "siblings/image/ImageDrawing.h"
#include "siblings/image/TextLayout.h"

#include <algorithm>

namespace pxvis::image {

namespace {

constexpr int32_t kInkMargin = 2;

size_t PixelsOf(const OQRect& rect)
{
    return static_cast<size_t>(rect.Width()) * static_cast<size_t>(rect.Height());
}

}

int32_t HorizontalOffset(int32_t alignment, int32_t room, int32_t width)
{
    switch (alignment & 3) {
    case 1:
        return (room - width) / 2;
    case 2:
        return room - width;
    default:
        return 0;
    }
}

OQRect InkOf(const TextLayout& layout, int32_t alignment)
{
    OQRect all;
    for (const TextLine& line : layout.Lines()) {
        if (IsEmpty(line.ink))
            continue;
        const int32_t x = HorizontalOffset(alignment, layout.Size().cx, line.width);
        const OQRect ink { x + line.ink.left - kInkMargin,
            line.baseline + line.ink.top - kInkMargin, x + line.ink.right + kInkMargin,
            line.baseline + line.ink.bottom + kInkMargin };
        all = Union(all, ink);
    }
    return all;
}

int64_t TextMask::Render(const TextLayout& layout, int32_t alignment, const OQRect& area)
{
    Clear();
    const GlyphRuns runs(layout, alignment, area);
    m_stride = cairo_format_stride_for_width(CAIRO_FORMAT_A8, area.Width());
    m_coverage.assign(static_cast<size_t>(m_stride) * static_cast<size_t>(area.Height()), 0);
    {
        const SurfaceHolder surface(cairo_image_surface_create_for_data(
            m_coverage.data(), CAIRO_FORMAT_A8, area.Width(), area.Height(), m_stride));
        runs.DrawPlain(CairoAt(surface, area.left, area.top).get());
        cairo_surface_flush(surface.get());
    }
    m_area = area;
    if (!IsEmpty(runs.ColoredInk())) {
        m_colors.assign(PixelsOf(runs.ColoredInk()), 0);
        m_colorArea = runs.ColoredInk();
        const SurfaceHolder surface(cairo_image_surface_create_for_data(
            reinterpret_cast<unsigned char*>(m_colors.data()), CAIRO_FORMAT_ARGB32,
            m_colorArea.Width(), m_colorArea.Height(), m_colorArea.Width() * 4));
        runs.DrawColored(CairoAt(surface, m_colorArea.left, m_colorArea.top).get());
        cairo_surface_flush(surface.get());
    }
    return runs.Work() + static_cast<int64_t>(Bytes());
}

void TextMask::Blend(
    const Pixels& target, const OQRect& part, int32_t x, int32_t y, uint32_t pixel) const
{
    for (int32_t row = part.top; row < part.bottom; ++row) {
        const uint8_t* coverage = m_coverage.data() + ptrdiff_t { row - m_area.top } * m_stride
            + (part.left - m_area.left);
        kernels::BlendCoverage(target.At(x + part.left, y + row), coverage, part.Width(), pixel);
    }
    const OQRect colored = Intersection(part, m_colorArea);
    if (IsEmpty(colored))
        return;
    for (int32_t row = colored.top; row < colored.bottom; ++row) {
        const uint32_t* colors = m_colors.data()
            + ptrdiff_t { row - m_colorArea.top } * m_colorArea.Width()
            + (colored.left - m_colorArea.left);
        kernels::BlendOver(target.At(x + colored.left, y + row), colors, colored.Width());
    }
}

size_t TextMask::Bytes() const
{
    return m_coverage.size() + m_colors.size() * sizeof(uint32_t);
}

// The memory stays for the next text.
void TextMask::Clear()
{
    m_area = m_colorArea = {};
    m_coverage.clear();
    m_colors.clear();
}

}
