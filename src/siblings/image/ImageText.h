#pragma once

#include "foundation/OQGeometry.h"
#include "siblings/image/TextLayout.h"
#include "siblings/image/TextMask.h"

#include <mutex>
#include <optional>
#include <pango/pango.h>
#include <string>
#include <vector>

namespace pxvis::image {

// Lays out texts by Pango on a font map of its own, which needs no display and no main loop and is
// blind to the desktop's font settings. The font map is kept between calls, and so is the last
// layout, since whoever has a text measured draws it next. Any thread; one lock, since Pango's
// objects are used by one thread at a time.
class ImageText
{
public:
    // The one of the module, never destroyed: threads may draw until the process ends.
    static ImageText& Get();

    // What is done with a layout is done under the lock, in `use`, which gets the layout and
    // whether it was made for this call. `text` is UTF-8. May throw std::bad_alloc.
    template <typename Use>
    void WithLayout(const FontStyle& style, std::string_view text, int32_t width, Use use)
    {
        const std::lock_guard lock(m_lock);
        const bool isNew = LayOut(style, text, width);
        use(*m_layout, isNew);
    }

    // The names of the font families, sorted.
    std::vector<std::string> Families();

    // Lets go of font map and layout; the next call makes new ones.
    void Release();

private:
    ImageText() = default;
    void Prepare();
    bool LayOut(const FontStyle& style, std::string_view text, int32_t width);

    std::mutex m_lock;
    PangoContext* m_context = nullptr; // holds the font map
    std::optional<TextLayout> m_layout;
};

}
