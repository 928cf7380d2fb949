#pragma once

#include "engine2d/CVisFlashLimiter.h"
#include "foundation/IOQImage.h"

#include <cstdint>
#include <memory>

namespace pxvis {

struct RenderOptions;

// An image's pixels as the flash meter and limiter take them; they stay the image's.
CVisPixels PixelsOf(IOQImage& image);

enum class FlashLimit
{
    On,
    Off,
};

// The pictures of a render as they go out: at the output's size, whatever size they are drawn at,
// and kept from flashing at the end, so that what is limited is what is seen.
class OutputPicture
{
public:
    // False without memory.
    bool Create(const RenderOptions& options, FlashLimit limit);

    // What to show of a picture from `time` (ns) on; good until the next one, and until the drawn
    // picture changes. Times rise.
    IOQImage& Of(IOQImage& drawn, int64_t time);

    // Of the pictures so far.
    uint64_t DampedCount() const { return m_dampedCount; }

private:
    bool m_scales = false;
    int32_t m_width = 0;
    int32_t m_height = 0;
    std::unique_ptr<IOQImage> m_own; // null: all pictures go out as they are drawn
    std::unique_ptr<CVisFlashLimiter> m_limiter; // null: no limit
    uint64_t m_dampedCount = 0;
};

}
