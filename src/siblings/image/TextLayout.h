#pragma once

#include "foundation/OQGeometry.h"

#include <cstdint>
#include <memory>
#include <pango/pango.h>
#include <string>
#include <string_view>
#include <vector>

namespace pxvis::image {

struct FontStyle
{
    std::string family; // empty: the default one
    int32_t pixels = 12;
    int32_t weight = 400;
    bool italic = false;
    bool strikeout = false;

    bool operator==(const FontStyle&) const = default;
};

// Pango and cairo hold positions in fixed point; this keeps a width in 1/1024 pixel within 31 bits.
constexpr int32_t kFarthest = 1 << 19;

struct TextLine
{
    PangoLayoutLine* line; // the layout's
    int32_t baseline; // from the top of the block
    int32_t width;
    OQRect ink; // from the line's left end on its baseline, with the stroke
    OQRect stroke; // the same; empty without strikeout
};

// A text in lines: a block as wide as its widest line. Each paragraph is laid out on its own, and
// long ones in parts, since Pango's time grows with the square of what it is given. Used under the
// lock of ImageText, like the context.
class TextLayout
{
public:
    // `text` is UTF-8, `width` in pixels, 1 to kFarthest.
    TextLayout(PangoContext* context, const FontStyle& style, std::string_view text, int32_t width);

    const FontStyle& Style() const { return m_style; }

    bool IsFor(const FontStyle& style, std::string_view text, int32_t width) const
    {
        return m_width == width && m_style == style && m_text == text;
    }

    // False: any width that is not below the block's gives the same lines.
    bool IsWrapped() const { return m_wrapped; }

    OQSize Size() const { return m_size; }

    const std::vector<TextLine>& Lines() const { return m_lines; }

    int64_t Work() const { return m_work; }

private:
    struct Unref
    {
        void operator()(PangoLayout* layout) const { g_object_unref(layout); }
    };

    void AddPart(PangoContext* context, const PangoFontDescription* font, std::string_view part);
    void AddLines(PangoLayout* layout);

    FontStyle m_style;
    std::string m_text;
    int32_t m_width;
    bool m_wrapped = false;
    OQSize m_size;
    std::vector<std::unique_ptr<PangoLayout, Unref>> m_parts;
    std::vector<TextLine> m_lines;
    int64_t m_work = 0;
};

}
