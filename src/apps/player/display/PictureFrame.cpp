#include "apps/player/display/PictureFrame.h"

#include <QContextMenuEvent>
#include <QMouseEvent>

#include <algorithm>

namespace pxvis::player {

namespace {

constexpr int stripPadding = 10;
constexpr double stripScale = 1.25; // of the application's font

void PaintBlack(QWidget& widget)
{
    QPalette palette = widget.palette();
    palette.setColor(QPalette::Window, Qt::black);
    palette.setColor(QPalette::WindowText, Qt::white);
    widget.setPalette(palette);
    widget.setAutoFillBackground(true);
}

}

PictureFrame::PictureFrame(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_NativeWindow);
    setAttribute(Qt::WA_DontCreateNativeAncestors);
    setMouseTracking(true);
    PaintBlack(*this);
}

void PictureFrame::SetText(const QString& text)
{
    m_text = text.simplified();
    if (!m_strip && m_text.isEmpty())
        return;
    if (!m_strip) {
        // A window of its own: the visualization's covers what is painted in the frame.
        m_strip = new QLabel(this);
        m_strip->setAttribute(Qt::WA_NativeWindow);
        m_strip->setAttribute(Qt::WA_DontCreateNativeAncestors);
        m_strip->setMouseTracking(true); // what it doesn't take comes to the frame
        m_strip->setTextFormat(Qt::PlainText);
        m_strip->setContentsMargins(stripPadding, stripPadding / 2, stripPadding, stripPadding / 2);
        PaintBlack(*m_strip);
        QFont font = m_strip->font();
        if (font.pointSizeF() > 0) // else it is in pixels
            font.setPointSizeF(font.pointSizeF() * stripScale);
        m_strip->setFont(font);
    }
    PlaceText();
    m_strip->setVisible(!m_text.isEmpty());
    m_strip->raise();
}

void PictureFrame::SetTextMargin(int height)
{
    m_textMargin = height;
    PlaceText();
}

void PictureFrame::RaiseText()
{
    if (m_strip)
        m_strip->raise();
}

void PictureFrame::PlaceText()
{
    if (!m_strip)
        return;
    const int most = std::max(0, width() - 2 * stripPadding);
    m_strip->setText(
        m_strip->fontMetrics().elidedText(m_text, Qt::ElideRight, most - 2 * stripPadding));
    const QSize size = m_strip->sizeHint().boundedTo({ most, height() });
    const int bottom = height() - m_textMargin - stripPadding;
    m_strip->setGeometry(stripPadding, bottom - size.height(), size.width(), size.height());
}

void PictureFrame::resizeEvent(QResizeEvent*)
{
    PlaceText();
    emit Resized();
}

void PictureFrame::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        emit DoubleClicked();
}

void PictureFrame::mouseMoveEvent(QMouseEvent*)
{
    emit PointerMoved();
}

void PictureFrame::contextMenuEvent(QContextMenuEvent* event)
{
    emit MenuAsked(event->globalPos());
}

}
