#include "siblings/image/CFont.h"

#include "foundation/OQString.h"
#include "kernels/PixelFromColor.h"
#include "siblings/image/ImageDrawing.h"
#include "siblings/image/ImageText.h"

#include <algorithm>
#include <cmath>

using pxvis::image::HorizontalOffset;
using pxvis::image::Intersection;
using pxvis::image::IsEmpty;
using pxvis::image::kFarthest;
using pxvis::image::TextLayout;

namespace {

constexpr int kMostNameUnits = 128; // of a family's name

// Of the first layout: a new size of a font asks the system for fonts that go with it.
constexpr int64_t kFontWork = 1 << 21;

// Small texts in small pictures are kept whole.
constexpr int64_t kLeastKeptPixels = 65536;

OQRect Near(const OQRect& rect)
{
    const auto nearer = [](int32_t v) { return std::clamp(v, -kFarthest, kFarthest); };
    return { nearer(rect.left), nearer(rect.top), nearer(rect.right), nearer(rect.bottom) };
}

OQRect Moved(const OQRect& rect, int32_t x, int32_t y)
{
    return { rect.left + x, rect.top + y, rect.right + x, rect.bottom + y };
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

std::string FamilyName(const OQChar* name)
{
    int length = 0;
    while (name && length < kMostNameUnits && name[length])
        ++length;
    return OQString(name, length).ToUtf8();
}

int32_t Pixels(const OQFontDescriptor& descriptor)
{
    const float height = descriptor.scale * static_cast<float>(descriptor.height);
    // NaN gives the least one.
    return height > 1.0f
        ? static_cast<int32_t>(std::min(height, static_cast<float>(IOQFont::maximumHeight)))
        : 1;
}

}

CFont::CFont(const OQFontDescriptor& descriptor)
    : m_style { .family = FamilyName(descriptor.typeName),
        .pixels = Pixels(descriptor),
        .weight = std::clamp(descriptor.weight, 100, 900),
        .italic = descriptor.italic,
        .strikeout = descriptor.strikeout }
{
}

int32_t CFont::GetHeight() const
{
    return m_style.pixels;
}

int64_t CFont::GetLayoutCount() const
{
    return m_layoutCount;
}

int64_t CFont::GetWork() const
{
    return m_work;
}

void CFont::SetText(std::u16string_view text)
{
    if (text == m_text)
        return;
    m_measured.reset();
    m_drawn.reset();
    m_text = text;
}

template <typename Use>
void CFont::LayOut(int32_t width, Use use)
{
    const std::string utf8 = OQString(m_text.data(), static_cast<int>(m_text.size())).ToUtf8();
    pxvis::image::ImageText::Get().WithLayout(
        m_style, utf8, width, [&](const TextLayout& layout, bool isNew) {
            if (isNew) {
                m_work += layout.Work() + (m_layoutCount == 0 ? kFontWork : 0);
                ++m_layoutCount;
            }
            use(layout);
        });
}

OQSize CFont::Measure(std::u16string_view text, int32_t width)
{
    width = std::min(width, kFarthest);
    if (text.empty() || width < 1)
        return {};
    SetText(text);
    for (const auto* shape : { &m_measured, &m_drawn }) {
        if (*shape && (*shape)->IsFor(width))
            return (*shape)->size;
    }
    LayOut(width, [&](const TextLayout& layout) {
        m_measured = { width, layout.IsWrapped(), layout.Size() };
    });
    return m_measured->size;
}

void CFont::Draw(const pxvis::image::Pixels& target, std::u16string_view text, OQRect rect,
    uint32_t color, int32_t alignment)
{
    rect = Near(rect);
    const OQRect shown = Intersection(rect, Bounds(target));
    if (text.empty() || IsEmpty(shown))
        return;
    SetText(text);
    if (!m_drawn || !m_drawn->IsFor(rect.Width()) || m_drawnAlignment != (alignment & 3)) {
        // What was measured at another width may hold here as well.
        const bool isMeasured = m_measured && m_measured->IsFor(rect.Width());
        LayOut(isMeasured ? m_measured->width : rect.Width(), [&](const TextLayout& layout) {
            m_mask.Clear();
            m_drawnAlignment = alignment & 3;
            m_ink = InkOf(layout, alignment);
            m_drawn = { isMeasured ? m_measured->width : rect.Width(), layout.IsWrapped(),
                layout.Size() };
        });
    }
    const OQSize size = m_drawn->size;
    const int32_t x = rect.left + HorizontalOffset(alignment, rect.Width(), size.cx);
    const int32_t y = rect.top + VerticalOffset(alignment, rect.Height(), size.cy);
    const OQRect needed = Moved(Intersection(Moved(m_ink, x, y), shown), -x, -y);
    if (IsEmpty(needed))
        return;
    const int64_t pixels = int64_t { target.width } * target.height;
    if (Intersection(needed, m_mask.Area()) != needed)
        Render(needed, 2 * std::max(pixels, kLeastKeptPixels));
    m_mask.Blend(target, needed, x, y, pxvis::kernels::PixelFromColor(color));
    if (static_cast<int64_t>(m_mask.Bytes()) > 2 * std::max(pixels, kLeastKeptPixels))
        m_mask.Clear();
}

// All of the ink if that is no more than so many pixels. Else the rows around what is needed, so
// that a text that moves through its box isn't rendered for every frame.
void CFont::Render(const OQRect& needed, int64_t pixels)
{
    OQRect area = m_ink;
    if (int64_t { m_ink.Width() } * m_ink.Height() > pixels) {
        area = needed;
        const int64_t more = std::max<int64_t>(pixels / needed.Width() - needed.Height(), 0) / 2;
        const auto rows = static_cast<int32_t>(std::min<int64_t>(more, kFarthest));
        area.top = std::max(needed.top - rows, m_ink.top);
        area.bottom = std::min(needed.bottom + rows, m_ink.bottom);
    }
    LayOut(m_drawn->width,
        [&](const TextLayout& layout) { m_work += m_mask.Render(layout, m_drawnAlignment, area); });
}
