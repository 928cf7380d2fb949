#pragma once

#include "foundation/IOQFont.h"
#include "foundation/OQGeometry.h"
#include "siblings/image/Pixels.h"
#include "siblings/image/TextLayout.h"
#include "siblings/image/TextMask.h"

#include <optional>
#include <string>
#include <string_view>

// The image module's font: a style, and what became of the last text that was measured and drawn
// with it.
class CFont final : public IOQFont
{
public:
    explicit CFont(const OQFontDescriptor& descriptor);

    int32_t GetHeight() const override;
    int64_t GetLayoutCount() const override;
    int64_t GetWork() const override;

    // As the operations of IOQImage. May throw std::bad_alloc.
    OQSize Measure(std::u16string_view text, int32_t width);
    void Draw(const pxvis::image::Pixels& target, std::u16string_view text, OQRect rect,
        uint32_t color, int32_t alignment);

private:
    // What is known of the text at a width.
    struct Shape
    {
        int32_t width;
        bool wrapped;
        OQSize size;

        bool IsFor(int32_t otherWidth) const
        {
            return wrapped ? otherWidth == width : otherWidth >= size.cx;
        }
    };

    void SetText(std::u16string_view text);
    template <typename Use>
    void LayOut(int32_t width, Use use);
    void Render(const OQRect& needed, int64_t pixels);

    pxvis::image::FontStyle m_style;
    int64_t m_layoutCount = 0;
    int64_t m_work = 0;

    std::u16string m_text;
    std::optional<Shape> m_measured;
    std::optional<Shape> m_drawn;
    int32_t m_drawnAlignment = 0; // horizontal
    OQRect m_ink; // of the block as drawn, from its top left corner
    pxvis::image::TextMask m_mask;
};
