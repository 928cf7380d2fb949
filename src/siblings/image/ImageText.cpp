#include "siblings/image/ImageText.h"

#include "siblings/image/ImageDrawing.h"

#include <algorithm>
#include <memory>
#include <pango/pangocairo.h>

namespace pxvis::image {

namespace {

constexpr const char* kFontFamily = "DejaVu Sans";
constexpr int kFontPixels = 12;

// Pango and cairo hold positions in fixed point; this keeps a width in 1/1024 pixel within 31 bits.
constexpr int32_t kFarthest = 1 << 19;

// How far anti-aliasing may reach past the ink that Pango tells.
constexpr int32_t kInkMargin = 2;

OQRect Near(const OQRect& rect)
{
    const auto nearer = [](int32_t v) { return std::clamp(v, -kFarthest, kFarthest); };
    return { nearer(rect.left), nearer(rect.top), nearer(rect.right), nearer(rect.bottom) };
}

// Pango's time for a word that doesn't fit a line grows with the square of the word's length.
constexpr int kLongestWord = 256; // characters

// Whether lines may be broken between words only: not with a word past that limit, which nobody
// wrote as a word. From U+3000 on, kana and ideographs, a line may break almost anywhere.
PangoWrapMode WrapMode(const std::string& text)
{
    int length = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte <= ' ' || byte >= 0xE3)
            length = 0;
        else if ((byte & 0xC0) != 0x80 && ++length > kLongestWord)
            return PANGO_WRAP_CHAR;
    }
    return PANGO_WRAP_WORD_CHAR;
}

PangoAlignment HorizontalAlignment(int32_t alignment)
{
    switch (alignment & 3) {
    case 1:
        return PANGO_ALIGN_CENTER;
    case 2:
        return PANGO_ALIGN_RIGHT;
    default:
        return PANGO_ALIGN_LEFT;
    }
}

// Of a text of this height in a box of that height. Text that is too high shows its first lines.
int32_t VerticalOffset(int32_t alignment, int32_t boxHeight, int32_t textHeight)
{
    const int32_t room = std::max(boxHeight - textHeight, 0);
    switch (alignment >> 2 & 3) {
    case 1:
        return room / 2;
    case 2:
        return room;
    default:
        return 0;
    }
}

}

ImageText& ImageText::Get()
{
    static ImageText* const text = new ImageText;
    return *text;
}

void ImageText::Release()
{
    const std::lock_guard lock(m_lock);
    if (m_layout)
        g_object_unref(m_layout);
    m_layout = nullptr;
    m_text.clear();
}

void ImageText::Prepare()
{
    if (m_layout)
        return;
    PangoFontMap* fontMap = pango_cairo_font_map_new();
    PangoContext* context = pango_font_map_create_context(fontMap);

    // Told in full: what is left open is taken from the user's font settings.
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_ON);
    pango_cairo_context_set_font_options(context, options);
    cairo_font_options_destroy(options);

    m_layout = pango_layout_new(context);
    PangoFontDescription* font = pango_font_description_new();
    pango_font_description_set_family_static(font, kFontFamily);
    pango_font_description_set_absolute_size(font, kFontPixels * PANGO_SCALE);
    pango_layout_set_font_description(m_layout, font);
    pango_font_description_free(font);

    g_object_unref(context);
    g_object_unref(fontMap);
}

std::vector<std::string> ImageText::Families()
{
    const std::lock_guard lock(m_lock);
    Prepare();
    PangoFontFamily** families = nullptr;
    int count = 0;
    pango_font_map_list_families(
        pango_context_get_font_map(pango_layout_get_context(m_layout)), &families, &count);
    const std::unique_ptr<PangoFontFamily*, decltype(&g_free)> holder(families, &g_free);
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i)
        names.emplace_back(pango_font_family_get_name(families[i]));
    std::sort(names.begin(), names.end());
    return names;
}

void ImageText::Draw(
    const Pixels& target, const std::string& text, OQRect rect, uint32_t color, int32_t alignment)
{
    rect = Near(rect);
    if (text.empty() || IsEmpty(Intersection(rect, Bounds(target))))
        return;

    const std::lock_guard lock(m_lock);
    Prepare();
    if (text != m_text) {
        m_text = text;
        pango_layout_set_wrap(m_layout, WrapMode(text));
        pango_layout_set_text(m_layout, text.data(), static_cast<int>(text.size()));
    }
    pango_layout_set_width(m_layout, rect.Width() * PANGO_SCALE);
    pango_layout_set_alignment(m_layout, HorizontalAlignment(alignment));

    PangoRectangle ink {};
    PangoRectangle logical {};
    pango_layout_get_pixel_extents(m_layout, &ink, &logical);
    const int32_t x = rect.left;
    const int32_t y = rect.top + VerticalOffset(alignment, rect.Height(), logical.height);
    const OQRect reach { x + ink.x - kInkMargin, y + ink.y - kInkMargin,
        x + ink.x + ink.width + kInkMargin, y + ink.y + ink.height + kInkMargin };
    const OQRect visible = Intersection(Intersection(reach, rect), Bounds(target));
    if (ink.width > 0 && ink.height > 0 && !IsEmpty(visible))
        DrawVisible(target, visible, x, y, color);
}

void ImageText::DrawVisible(
    const Pixels& target, const OQRect& visible, int32_t x, int32_t y, uint32_t color)
{
    const int32_t width = visible.Width();
    const int32_t height = visible.Height();
    // Opaque to cairo: our alpha says nothing of the colours beside it. Cairo leaves the fourth
    // byte of such pixels undefined, so it is put back afterwards.
    m_alpha.resize(static_cast<size_t>(width) * static_cast<size_t>(height));
    auto alpha = m_alpha.begin();
    for (int32_t row = visible.top; row < visible.bottom; ++row) {
        const uint32_t* pixel = target.At(visible.left, row);
        for (int32_t i = 0; i < width; ++i)
            *alpha++ = static_cast<uint8_t>(pixel[i] >> 24);
    }

    // The surface is just the visible part, so nothing outside can be touched. Cairo takes the
    // stored order of rows as a negative stride; turning the picture over by a transformation
    // would change the shapes of the glyphs.
    cairo_surface_t* surface = cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(target.At(visible.left, visible.top)), CAIRO_FORMAT_RGB24,
        width, height, static_cast<int>(target.stride * 4));
    cairo_t* cairo = cairo_create(surface);
    cairo_set_source_rgb(
        cairo, (color & 0xFF) / 255.0, (color >> 8 & 0xFF) / 255.0, (color >> 16 & 0xFF) / 255.0);
    cairo_move_to(cairo, x - visible.left, y - visible.top);
    pango_cairo_show_layout(cairo, m_layout);
    cairo_destroy(cairo);
    cairo_surface_flush(surface);
    cairo_surface_destroy(surface);

    alpha = m_alpha.begin();
    for (int32_t row = visible.top; row < visible.bottom; ++row) {
        uint32_t* pixel = target.At(visible.left, row);
        for (int32_t i = 0; i < width; ++i)
            pixel[i] = (pixel[i] & 0xFFFFFF) | uint32_t { *alpha++ } << 24;
    }
}

}
