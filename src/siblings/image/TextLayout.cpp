#include "siblings/image/TextLayout.h"

#include "siblings/image/ImageDrawing.h"

#include <algorithm>

namespace pxvis::image {

namespace {

constexpr const char* kDefaultFamily = "DejaVu Sans";

// What laying out costs, in nanoseconds on the slow side.
constexpr int64_t kByteWork = 1500;
constexpr int64_t kLineWork = 20'000;

// Of a part of a paragraph, in bytes; longer paragraphs get a line's end there.
constexpr size_t kLongestPart = 1024;

// Pango's time for a word, or for white space, that doesn't fit a line grows with the square of the
// length.
constexpr int kLongestWord = 100; // characters
constexpr int kLongestGap = 16;

// Whether lines may be broken between words only: not where something passes those limits, which
// nobody wrote as words. From U+3000 on, kana and ideographs, a line may break almost anywhere.
PangoWrapMode WrapMode(std::string_view text)
{
    int word = 0;
    int gap = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte & 0xC0) == 0x80)
            continue;
        gap = byte <= ' ' ? gap + 1 : 0;
        word = byte <= ' ' || byte >= 0xE3 ? 0 : word + 1;
        if (word > kLongestWord || gap > kLongestGap)
            return PANGO_WRAP_CHAR;
    }
    return PANGO_WRAP_WORD_CHAR;
}

bool IsCharacterStart(std::string_view text, size_t at)
{
    return (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80;
}

// The length of the first part of a paragraph: up to a gap between words if there is one.
size_t PartLength(std::string_view paragraph)
{
    if (paragraph.size() <= kLongestPart)
        return paragraph.size();
    const size_t gap = paragraph.substr(0, kLongestPart).rfind(' ');
    if (gap != std::string_view::npos && gap > kLongestPart / 2)
        return gap + 1;
    size_t length = kLongestPart;
    while (!IsCharacterStart(paragraph, length))
        --length;
    return length;
}

// Sums of what a stranger's text makes large stay within this.
int32_t Near(int64_t pixels)
{
    return static_cast<int32_t>(std::clamp<int64_t>(pixels, -kFarthest, kFarthest));
}

PangoFontDescription* Describe(const FontStyle& style)
{
    PangoFontDescription* font = pango_font_description_new();
    pango_font_description_set_family(
        font, style.family.empty() ? kDefaultFamily : style.family.c_str());
    pango_font_description_set_absolute_size(font, double { PANGO_SCALE } * style.pixels);
    pango_font_description_set_weight(font, static_cast<PangoWeight>(style.weight));
    pango_font_description_set_style(font, style.italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
    return font;
}

}

TextLayout::TextLayout(
    PangoContext* context, const FontStyle& style, std::string_view text, int32_t width)
    : m_style(style)
    , m_text(text)
    , m_width(width)
{
    const std::unique_ptr<PangoFontDescription, decltype(&pango_font_description_free)> font(
        Describe(style), &pango_font_description_free);
    std::string_view rest = m_text;
    for (;;) {
        const size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
        std::string_view paragraph = rest.substr(0, end);
        do {
            const size_t length = PartLength(paragraph);
            AddPart(context, font.get(), paragraph.substr(0, length));
            paragraph.remove_prefix(length);
        } while (!paragraph.empty());
        if (end == rest.size())
            break;
        rest.remove_prefix(end + (rest.substr(end).starts_with("\r\n") ? 2 : 1));
    }
    m_work += kByteWork * static_cast<int64_t>(m_text.size())
        + kLineWork * static_cast<int64_t>(m_lines.size());
}

void TextLayout::AddPart(
    PangoContext* context, const PangoFontDescription* font, std::string_view part)
{
    m_parts.emplace_back(pango_layout_new(context));
    PangoLayout* layout = m_parts.back().get();
    pango_layout_set_font_description(layout, font);
    pango_layout_set_wrap(layout, WrapMode(part));
    pango_layout_set_width(layout, m_width * PANGO_SCALE);
    pango_layout_set_text(layout, part.data(), static_cast<int>(part.size()));
    AddLines(layout);
    m_wrapped = m_wrapped || pango_layout_is_wrapped(layout);
}

// By the lines' own heights: a layout's positions may pass what its numbers hold.
void TextLayout::AddLines(PangoLayout* layout)
{
    for (GSList* item = pango_layout_get_lines_readonly(layout); item; item = item->next) {
        auto* line = static_cast<PangoLayoutLine*>(item->data);
        PangoRectangle ink {};
        PangoRectangle logical {};
        pango_layout_line_get_pixel_extents(line, &ink, &logical);
        const int32_t width = std::max(Near(logical.width), 0);
        OQRect reach { Near(ink.x), Near(ink.y), Near(int64_t { ink.x } + ink.width),
            Near(int64_t { ink.y } + ink.height) };
        OQRect stroke;
        if (m_style.strikeout && width > 0) {
            const int32_t top = -m_style.pixels * 3 / 10;
            stroke = { 0, top, width, top + std::max(m_style.pixels / 16, 1) };
            reach = Union(reach, stroke);
        }
        m_lines.push_back({ line, Near(int64_t { m_size.cy } - logical.y), width, reach, stroke });
        m_size.cx = std::max(m_size.cx, width);
        m_size.cy = Near(int64_t { m_size.cy } + std::max(logical.height, 0));
    }
}

}
