#include "apps/pxvis/OutputPicture.h"

#include "apps/pxvis/RenderCommand.h"
#include "foundation/OQParallelRows.h"
#include "foundation/OQSiblingModules.h"
#include "kernels/Stretch.h"

namespace pxvis {

CVisPixels PixelsOf(IOQImage& image)
{
    const OQSize size = image.GetSize();
    const int64_t lastRow = int64_t { size.cy - 1 } * size.cx;
    return { image.GetBits() + lastRow, -size.cx, size.cx, size.cy };
}

bool OutputPicture::Create(const RenderOptions& options, FlashLimit limit)
{
    m_scales = options.pictureScale != 1.0;
    m_width = options.width;
    m_height = options.height;
    if (limit == FlashLimit::On)
        m_limiter = std::make_unique<CVisFlashLimiter>();
    if (!m_scales && !m_limiter)
        return true;
    m_own.reset(OQCreateImage());
    return m_own && m_own->Create(m_width, m_height, 0, 0);
}

IOQImage& OutputPicture::Of(IOQImage& drawn, int64_t time)
{
    uint32_t* top = m_own ? m_own->GetBits() + int64_t { m_height - 1 } * m_width : nullptr;
    if (m_scales) {
        const CVisPixels source = PixelsOf(drawn);
        OQParallelRows(0, m_height, m_width, [&](int32_t first, int32_t last) {
            kernels::StretchRows(top - ptrdiff_t { first } * m_width, -m_width, m_width, m_height,
                source.topRow, source.stride, source.width, source.height, first, last);
        });
    }
    IOQImage& picture = m_scales ? *m_own : drawn;
    if (!m_limiter || !m_limiter->IsDamped(PixelsOf(picture), time))
        return picture;
    // Not in the drawn picture, which the engine draws the next one from.
    m_limiter->CopyDamped(top, -m_width);
    ++m_dampedCount;
    return *m_own;
}

}
