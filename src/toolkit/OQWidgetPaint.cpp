#include "toolkit/OQWidgetPaint.h"

#include "foundation/IOQImage.h"
#include "foundation/OQParallelRows.h"
#include "kernels/Stretch.h"
#include "toolkit/OQWindowWidget.h"

namespace {

constexpr int32_t MostPictureSide = 16384;

}

// Qt's units may be larger than a pixel; ours are pixels.
OQWidgetPaint::OQWidgetPaint(OQWindowWidget& widget)
    : m_widget(widget)
    , m_painter(&widget)
{
    const double pixel = 1.0 / widget.devicePixelRatioF();
    m_painter.scale(pixel, pixel);
}

void OQWidgetPaint::FillRect(const OQRect& rect, uint32_t color)
{
    if (rect.left < rect.right && rect.top < rect.bottom)
        m_painter.fillRect(rect.left, rect.top, rect.Width(), rect.Height(), QColor(color));
}

bool OQWidgetPaint::DrawImage(IOQImage& image, const OQRect& rect)
{
    const OQSize size = image.GetSize();
    const uint32_t* bits = image.GetBits();
    const int32_t width = rect.Width();
    const int32_t height = rect.Height();
    if (!bits || rect.left >= rect.right || rect.top >= rect.bottom || width > MostPictureSide
        || height > MostPictureSide)
        return false;
    QImage& picture = m_widget.GetPicture();
    if (picture.width() != width || picture.height() != height)
        picture = QImage(width, height, QImage::Format_RGB32);
    if (picture.isNull())
        return false;
    auto* target = reinterpret_cast<uint32_t*>(picture.bits());
    const uint32_t* topRow = bits + ptrdiff_t { size.cx } * (size.cy - 1);
    OQParallelRows(0, height, width, [&](int32_t first, int32_t last) {
        pxvis::kernels::StretchRows(target + ptrdiff_t { first } * width, width, width, height,
            topRow, -size.cx, size.cx, size.cy, first, last);
    });
    m_painter.drawImage(rect.left, rect.top, picture);
    return true;
}
