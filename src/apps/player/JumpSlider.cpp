#include "apps/player/JumpSlider.h"

#include "apps/player/Appearance.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace pxvis::player {

namespace {

constexpr int usualHeight = 18;
constexpr double grooveHeight = 4;
constexpr double radius = 6; // of the handle

}

JumpSlider::JumpSlider(QWidget* parent)
    : QSlider(Qt::Horizontal, parent)
{
    setFocusPolicy(Qt::TabFocus); // a click leaves the keys where they were
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::PointingHandCursor);
}

QSize JumpSlider::sizeHint() const
{
    return { 110, usualHeight };
}

QSize JumpSlider::minimumSizeHint() const
{
    return { 50, usualHeight };
}

QRectF JumpSlider::Groove() const
{
    return QRectF(
        radius, (QWidget::height() - grooveHeight) / 2, width() - 2 * radius, grooveHeight);
}

int JumpSlider::ValueAt(double x) const
{
    const QRectF groove = Groove();
    double share = groove.width() > 0 ? (x - groove.left()) / groove.width() : 0.0;
    if (layoutDirection() == Qt::RightToLeft)
        share = 1 - share;
    const double range = static_cast<double>(maximum()) - minimum();
    return minimum() + static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * range));
}

void JumpSlider::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    setSliderDown(true);
    setSliderPosition(ValueAt(event->position().x()));
}

void JumpSlider::mouseMoveEvent(QMouseEvent* event)
{
    if (isSliderDown())
        setSliderPosition(ValueAt(event->position().x()));
}

void JumpSlider::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && isSliderDown())
        setSliderDown(false);
}

bool JumpSlider::event(QEvent* event)
{
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave)
        update();
    return QSlider::event(event);
}

void JumpSlider::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (layoutDirection() == Qt::RightToLeft)
        painter.setTransform(QTransform(-1, 0, 0, 1, width(), 0));

    const QRectF groove = Groove();
    const double range = static_cast<double>(maximum()) - minimum();
    const double share = range > 0 ? (sliderPosition() - minimum()) / range : 0.0;
    const double x = groove.left() + share * groove.width();
    painter.setBrush(Appearance::Line());
    painter.drawRoundedRect(groove, grooveHeight / 2, grooveHeight / 2);
    if (!isEnabled())
        return;
    QRectF filled = groove;
    filled.setRight(x);
    painter.setBrush(Appearance::Accent());
    painter.drawRoundedRect(filled, grooveHeight / 2, grooveHeight / 2);
    if (underMouse() || isSliderDown() || hasFocus()) {
        painter.setBrush(hasFocus() ? Appearance::Accent() : QColor(Qt::white));
        painter.drawEllipse(QPointF(x, groove.center().y()), radius, radius);
    }
}

}
