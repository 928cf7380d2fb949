#pragma once

#include "foundation/OQGeometry.h"

#include <cairo.h>
#include <cstdint>
#include <memory>
#include <pango/pango.h>
#include <vector>

namespace pxvis::image {

class TextLayout;

struct FreeSurface
{
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};

struct FreeCairo
{
    void operator()(cairo_t* cairo) const { cairo_destroy(cairo); }
};

using SurfaceHolder = std::unique_ptr<cairo_surface_t, FreeSurface>;
using CairoHolder = std::unique_ptr<cairo_t, FreeCairo>;

// A cairo to draw on the surface with, its origin at the given point of what is drawn.
CairoHolder CairoAt(const SurfaceHolder& surface, int32_t left, int32_t top);

// The glyphs of a layout that lie in a part of its block, and how to draw them. Used under the lock
// of ImageText while the layout lives.
class GlyphRuns
{
public:
    GlyphRuns(const TextLayout& layout, int32_t alignment, const OQRect& area);

    // All but the coloured ones.
    void DrawPlain(cairo_t* cairo) const;

    // What the coloured ones cover of the area; empty without any.
    const OQRect& ColoredInk() const { return m_coloredInk; }

    void DrawColored(cairo_t* cairo) const;

    int64_t Work() const { return m_work; }

private:
    struct Run
    {
        PangoFont* font;
        PangoGlyphString* glyphs;
        int32_t x; // of its start on the baseline, in the block, in units of Pango
        int32_t y; // in pixels
        bool colored;
    };

    bool AddLine(PangoLayoutLine* line, int32_t x, int32_t y);
    bool AddRun(const Run& run);
    bool IsColored(PangoFont* font);
    void DrawLargeColored(cairo_t* cairo, const Run& run) const;

    int32_t m_pixels; // of the font
    OQRect m_area;
    std::vector<Run> m_runs;
    std::vector<OQRect> m_strokes;
    std::vector<std::pair<PangoFont*, bool>>
        m_fonts; // those met so far, and whether they have colours
    OQRect m_coloredInk;
    int64_t m_rows = 0; // of pixels, of all glyphs
    int64_t m_work = 0;
};

}
