#pragma once

#include "foundation/OQGeometry.h"
#include "siblings/image/Pixels.h"

#include <mutex>
#include <pango/pango.h>
#include <string>
#include <vector>

namespace pxvis::image {

// Draws text by Pango on a font map of its own, which needs no display and no main loop and is
// blind to the desktop's font settings. Font map and layout are kept between calls. Any thread;
// one lock, since Pango's objects are used by one thread at a time.
class ImageText
{
public:
    // The one of the module, never destroyed: threads may draw until the process ends.
    static ImageText& Get();

    // As IOQImage::DrawText; text is UTF-8. May throw std::bad_alloc.
    void Draw(const Pixels& target, const std::string& text, OQRect rect, uint32_t color,
        int32_t alignment);

    // The names of the font families, sorted.
    std::vector<std::string> Families();

    // Lets go of font map and layout; the next Draw makes new ones.
    void Release();

private:
    ImageText() = default;
    void Prepare();
    void DrawVisible(
        const Pixels& target, const OQRect& visible, int32_t x, int32_t y, uint32_t color);

    std::mutex m_lock;
    PangoLayout* m_layout = nullptr; // holds the context, which holds the font map
    std::string m_text; // what the layout holds
    std::vector<uint8_t> m_alpha; // of the pixels under the ink, while cairo draws
};

}
