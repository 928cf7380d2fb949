#include "apps/player/RatingStars.h"

#include "apps/player/Appearance.h"
#include "apps/player/PlayerIcons.h"
#include "apps/player/collection/SongLibrary.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

namespace pxvis::player {

namespace {

constexpr int stars = 5;
constexpr int side = 18;
constexpr int gap = 6; // before the sign for "never"

QString NameOf(int rating)
{
    if (rating == SongLibrary::never)
        return RatingStars::tr("Never show this script");
    if (rating == SongLibrary::noRating)
        return RatingStars::tr("Not rated");
    return RatingStars::tr("%1 of 5 stars").arg(rating);
}

}

RatingStars::RatingStars(QWidget* parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(tr("Rating of the script"));
    Tell();
}

QSize RatingStars::sizeHint() const
{
    return { side * (stars + 1) + gap, side };
}

void RatingStars::SetRating(int rating)
{
    if (rating == m_rating)
        return;
    m_rating = rating;
    Tell();
    update();
}

void RatingStars::Tell()
{
    setAccessibleDescription(NameOf(m_rating));
    QAccessibleEvent change(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&change);
}

QRect RatingStars::PlaceOf(int rating) const
{
    const int top = (height() - side) / 2;
    return rating == SongLibrary::never ? QRect(stars * side + gap, top, side, side)
                                        : QRect((rating - 1) * side, top, side, side);
}

int RatingStars::RatingAt(const QPoint& point) const
{
    for (int rating = 1; rating <= stars; ++rating) {
        if (PlaceOf(rating).contains(point))
            return rating;
    }
    return PlaceOf(SongLibrary::never).contains(point) ? SongLibrary::never : SongLibrary::noRating;
}

void RatingStars::mousePressEvent(QMouseEvent* event)
{
    const int rating = RatingAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && rating != SongLibrary::noRating)
        emit Rated(rating == m_rating ? SongLibrary::noRating : rating);
}

void RatingStars::mouseMoveEvent(QMouseEvent* event)
{
    m_hovered = RatingAt(event->position().toPoint());
    update();
}

void RatingStars::leaveEvent(QEvent*)
{
    m_hovered = SongLibrary::noRating;
    update();
}

void RatingStars::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Right && m_rating < stars)
        emit Rated(m_rating + 1);
    else if (event->key() == Qt::Key_Left && m_rating > SongLibrary::never)
        emit Rated(m_rating - 1);
    else
        QWidget::keyPressEvent(event);
}

bool RatingStars::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const int rating = RatingAt(help->pos());
        const QString keys = rating == SongLibrary::never ? tr("X")
            : rating > SongLibrary::noRating              ? QString::number(rating)
                                                          : tr("0 to 5, X");
        QToolTip::showText(help->globalPos(),
            QStringLiteral("%1 (%2)").arg(
                rating == SongLibrary::noRating ? accessibleName() : NameOf(rating), keys),
            this);
        return true;
    }
    if (event->type() == QEvent::ShortcutOverride) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Left || key == Qt::Key_Right) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

void RatingStars::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto paint = [&](int rating, IconShape shape, const QColor& color) {
        const QRectF place = PlaceOf(rating);
        painter.save();
        painter.translate(place.topLeft());
        painter.scale(place.width() / 24, place.height() / 24);
        painter.fillPath(PathOf(shape), color);
        painter.restore();
    };
    const int shown = m_hovered > SongLibrary::noRating ? m_hovered : m_rating;
    const QColor on = m_hovered > SongLibrary::noRating ? palette().color(QPalette::ButtonText)
                                                        : Appearance::Accent();
    const QColor off = Appearance::Line().lighter(130);
    for (int rating = 1; rating <= stars; ++rating) {
        const QColor color = !isEnabled() ? Appearance::Line() : rating <= shown ? on : off;
        paint(rating, IconShape::Star, color);
    }
    const bool isNever = m_rating == SongLibrary::never || m_hovered == SongLibrary::never;
    paint(SongLibrary::never, IconShape::Never,
        !isEnabled()  ? Appearance::Line()
            : isNever ? QColor(0xE0, 0x6C, 0x75)
                      : off);
    if (hasFocus()) {
        painter.setPen(Appearance::Accent());
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
    }
}

}
