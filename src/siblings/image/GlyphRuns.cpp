#include "siblings/image/GlyphRuns.h"

#include "siblings/image/ImageDrawing.h"
#include "siblings/image/TextLayout.h"
#include "siblings/image/TextMask.h"

#include <algorithm>
#include <hb-ot.h>
#include <pango/pangocairo.h>

namespace pxvis::image {

namespace {

// Cairo keeps the picture of every glyph that it shows, thousands of them, whatever their size.
// Larger glyphs are filled as outlines, and larger coloured ones are stretched.
constexpr int32_t kLargestKept = 64; // pixels
constexpr int32_t kLargestColored = 128;

// Rows of pixels that the glyphs of one picture may have in all. A page full of text has tenths of
// that; thousands of marks on one huge letter have more.
constexpr int64_t kMostRows = 1 << 20;
constexpr int64_t kRowWork = 200;
constexpr int64_t kGlyphWork = 2000;

// How far anti-aliasing may reach past the ink that Pango tells.
constexpr int32_t kInkMargin = 2;

int32_t InPixels(int32_t units)
{
    return PANGO_PIXELS_FLOOR(units);
}

// The glyphs lie where they lie in Pango's fixed point; what stands far outside is left out before.
void MoveTo(cairo_t* cairo, int32_t x, int32_t y)
{
    cairo_move_to(cairo, static_cast<double>(x) / PANGO_SCALE, y);
}

}

CairoHolder CairoAt(const SurfaceHolder& surface, int32_t left, int32_t top)
{
    CairoHolder cairo(cairo_create(surface.get()));
    cairo_translate(cairo.get(), -left, -top);
    return cairo;
}

GlyphRuns::GlyphRuns(const TextLayout& layout, int32_t alignment, const OQRect& area)
    : m_pixels(layout.Style().pixels)
    , m_area(area)
{
    for (const TextLine& line : layout.Lines()) {
        if (line.baseline + line.ink.top - kInkMargin >= area.bottom
            || line.baseline + line.ink.bottom + kInkMargin <= area.top)
            continue;
        const int32_t x = HorizontalOffset(alignment, layout.Size().cx, line.width);
        if (!IsEmpty(line.stroke))
            m_strokes.push_back({ x + line.stroke.left, line.baseline + line.stroke.top,
                x + line.stroke.right, line.baseline + line.stroke.bottom });
        if (!AddLine(line.line, x, line.baseline))
            break;
    }
}

// False when there are as many as may be.
bool GlyphRuns::AddLine(PangoLayoutLine* line, int32_t x, int32_t y)
{
    int64_t position = int64_t { x } * PANGO_SCALE;
    for (GSList* item = line->runs; item; item = item->next) {
        const auto* run = static_cast<PangoGlyphItem*>(item->data);
        const int64_t width = pango_glyph_string_get_width(run->glyphs);
        const int64_t begin = position + run->start_x_offset;
        position = begin + width + run->end_x_offset;
        const int64_t reach = int64_t { m_pixels } * 2 * PANGO_SCALE;
        if (begin - reach >= int64_t { m_area.right } * PANGO_SCALE
            || begin + width + reach <= int64_t { m_area.left } * PANGO_SCALE
            || std::abs(begin) > int64_t { kFarthest } * PANGO_SCALE)
            continue;
        PangoFont* font = run->item->analysis.font;
        if (!AddRun({ font, run->glyphs, static_cast<int32_t>(begin), y - InPixels(run->y_offset),
                IsColored(font) }))
            return false;
    }
    return true;
}

bool GlyphRuns::AddRun(const Run& run)
{
    const int64_t glyphs = run.glyphs->num_glyphs;
    const int64_t rows = glyphs * std::min(m_pixels * 2, m_area.Height());
    if (rows > kMostRows - m_rows)
        return false;
    m_rows += rows;
    m_work += kGlyphWork * glyphs + kRowWork * rows;
    m_runs.push_back(run);
    if (run.colored) {
        PangoRectangle ink {};
        pango_glyph_string_extents(run.glyphs, run.font, &ink, nullptr);
        const int32_t left = InPixels(run.x) + InPixels(ink.x) - kInkMargin;
        const int32_t top = run.y + InPixels(ink.y) - kInkMargin;
        const OQRect rect { left, top, left + InPixels(ink.width) + 2 * kInkMargin + 2,
            top + InPixels(ink.height) + 2 * kInkMargin + 2 };
        m_coloredInk = Union(m_coloredInk, Intersection(rect, m_area));
    }
    return true;
}

bool GlyphRuns::IsColored(PangoFont* font)
{
    if (!font)
        return false;
    for (const auto& [known, colored] : m_fonts) {
        if (known == font)
            return colored;
    }
    hb_font_t* shaped = pango_font_get_hb_font(font);
    hb_face_t* face = shaped ? hb_font_get_face(shaped) : nullptr;
    const bool colored = face && (hb_ot_color_has_png(face) || hb_ot_color_has_layers(face));
    m_fonts.emplace_back(font, colored);
    return colored;
}

void GlyphRuns::DrawPlain(cairo_t* cairo) const
{
    for (const Run& run : m_runs) {
        if (run.colored)
            continue;
        MoveTo(cairo, run.x, run.y);
        if (m_pixels <= kLargestKept) {
            pango_cairo_show_glyph_string(cairo, run.font, run.glyphs);
        } else {
            pango_cairo_glyph_string_path(cairo, run.font, run.glyphs);
            cairo_fill(cairo);
        }
    }
    for (const OQRect& stroke : m_strokes)
        cairo_rectangle(cairo, stroke.left, stroke.top, stroke.Width(), stroke.Height());
    cairo_fill(cairo);
}

void GlyphRuns::DrawColored(cairo_t* cairo) const
{
    for (const Run& run : m_runs) {
        if (!run.colored)
            continue;
        if (m_pixels > kLargestColored) {
            DrawLargeColored(cairo, run);
            continue;
        }
        MoveTo(cairo, run.x, run.y);
        pango_cairo_show_glyph_string(cairo, run.font, run.glyphs);
    }
}

// One glyph after the other at the largest size that may be kept, stretched from there.
void GlyphRuns::DrawLargeColored(cairo_t* cairo, const Run& run) const
{
    const std::unique_ptr<PangoFontDescription, decltype(&pango_font_description_free)> description(
        pango_font_describe_with_absolute_size(run.font), &pango_font_description_free);
    // The description of a font that has one size tells that one.
    const double stretch = static_cast<double>(m_pixels) / kLargestColored;
    pango_font_description_set_absolute_size(
        description.get(), double { PANGO_SCALE } * kLargestColored);
    const std::unique_ptr<PangoContext, decltype(&g_object_unref)> context(
        pango_font_map_create_context(pango_font_get_font_map(run.font)), &g_object_unref);
    const std::unique_ptr<PangoFont, decltype(&g_object_unref)> font(
        pango_context_load_font(context.get(), description.get()), &g_object_unref);
    if (!font)
        return;

    constexpr int32_t side = kLargestColored * 3; // room around what may be wider than the em
    int64_t x = run.x;
    for (int i = 0; i < run.glyphs->num_glyphs; ++i) {
        const PangoGlyphGeometry geometry = run.glyphs->glyphs[i].geometry;
        const double left = static_cast<double>(x + geometry.x_offset) / PANGO_SCALE;
        const double top = run.y + static_cast<double>(geometry.y_offset) / PANGO_SCALE;
        x += geometry.width;
        const double reach = side * stretch;
        if (left - reach > m_area.right || left + reach < m_area.left)
            continue;
        const SurfaceHolder surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, side, side));
        {
            PangoGlyphInfo info = run.glyphs->glyphs[i];
            info.geometry.x_offset = info.geometry.y_offset = 0;
            int cluster = 0;
            PangoGlyphString one { 1, &info, &cluster, 1 };
            const CairoHolder small = CairoAt(surface, -kLargestColored, -2 * kLargestColored);
            cairo_move_to(small.get(), 0, 0);
            pango_cairo_show_glyph_string(small.get(), font.get(), &one);
        }
        cairo_save(cairo);
        cairo_translate(cairo, left, top);
        cairo_scale(cairo, stretch, stretch);
        cairo_set_source_surface(cairo, surface.get(), -kLargestColored, -2 * kLargestColored);
        cairo_paint(cairo);
        cairo_restore(cairo);
    }
}

}
