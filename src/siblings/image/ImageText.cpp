#include "siblings/image/ImageText.h"

#include <algorithm>
#include <memory>
#include <pango/pangocairo.h>

namespace pxvis::image {

ImageText& ImageText::Get()
{
    static ImageText* const text = new ImageText;
    return *text;
}

void ImageText::Release()
{
    const std::lock_guard lock(m_lock);
    m_layout.reset();
    if (m_context)
        g_object_unref(m_context);
    m_context = nullptr;
}

void ImageText::Prepare()
{
    if (m_context)
        return;
    PangoFontMap* fontMap = pango_cairo_font_map_new();
    m_context = pango_font_map_create_context(fontMap);
    g_object_unref(fontMap);

    // Told in full: what is left open is taken from the user's font settings.
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_ON);
    pango_cairo_context_set_font_options(m_context, options);
    cairo_font_options_destroy(options);
    // The locale's language would choose between shapes of the same characters.
    pango_context_set_language(m_context, pango_language_from_string("en"));
}

// True if the layout is a new one.
bool ImageText::LayOut(const FontStyle& style, std::string_view text, int32_t width)
{
    Prepare();
    if (m_layout && m_layout->IsFor(style, text, width))
        return false;
    m_layout.reset();
    m_layout.emplace(m_context, style, text, width);
    return true;
}

std::vector<std::string> ImageText::Families()
{
    const std::lock_guard lock(m_lock);
    Prepare();
    PangoFontFamily** families = nullptr;
    int count = 0;
    pango_font_map_list_families(pango_context_get_font_map(m_context), &families, &count);
    const std::unique_ptr<PangoFontFamily*, decltype(&g_free)> holder(families, &g_free);
    std::vector<std::string> names;
    names.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        names.emplace_back(pango_font_family_get_name(families[i]));
    std::sort(names.begin(), names.end());
    return names;
}

}
