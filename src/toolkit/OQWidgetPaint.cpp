#include "toolkit/OQWidgetPaint.h"

#include "foundation/IOQImage.h"
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

bool OQWidgetPaint::DrawImage(const IOQImage& image, const OQRect& rect)
{
    const int32_t width = rect.Width();
    const int32_t height = rect.Height();
    if (rect.left >= rect.right || rect.top >= rect.bottom || width > MostPictureSide
        || height > MostPictureSide)
        return false;
    QImage& picture = m_widget.GetPicture();
    if (picture.width() != width || picture.height() != height)
        picture = QImage(width, height, QImage::Format_RGB32);
    if (picture.isNull()
        || !image.Blit(picture.bits(), width, height, static_cast<int32_t>(picture.bytesPerLine())))
        return false;
    m_painter.drawImage(rect.left, rect.top, picture);
    return true;
}
