#include "apps/player/PlayerIcons.h"

#include "apps/player/Appearance.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPathStroker>
#include <QPalette>

#include <cmath>
#include <numbers>

namespace pxvis::player {

namespace {

constexpr double unit = 24; // the side of the square that the shapes are drawn on
constexpr double lineWidth = 1.9;

// Lines become areas, so that a shape is one path to be filled.
QPainterPath Stroked(const QPainterPath& lines, double width = lineWidth)
{
    QPainterPathStroker stroker;
    stroker.setWidth(width);
    stroker.setCapStyle(Qt::RoundCap);
    stroker.setJoinStyle(Qt::RoundJoin);
    return stroker.createStroke(lines);
}

QPainterPath Lines(const QList<QPolygonF>& polylines)
{
    QPainterPath path;
    for (const QPolygonF& polyline : polylines)
        path.addPolygon(polyline);
    return path;
}

QPainterPath Filled(const QPolygonF& outline)
{
    QPainterPath path;
    path.addPolygon(outline);
    path.closeSubpath();
    return path.united(Stroked(path, 1.2)); // rounds the corners
}

QPainterPath Bar(double x, double y, double width, double height)
{
    QPainterPath path;
    path.addRoundedRect(QRectF(x, y, width, height), 0.9, 0.9);
    return path;
}

QPainterPath Mirrored(const QPainterPath& path)
{
    return QTransform(-1, 0, 0, 1, unit, 0).map(path);
}

QPainterPath NextSongPath()
{
    return Filled({ { 5, 5.5 }, { 15, 12 }, { 5, 18.5 } }).united(Bar(17, 5, 2.4, 14));
}

QPainterPath NextScriptPath()
{
    return Stroked(
        Lines({ { { 6, 6 }, { 12, 12 }, { 6, 18 } }, { { 13, 6 }, { 19, 12 }, { 13, 18 } } }));
}

QPainterPath SpeakerPath()
{
    return Filled(
        { { 3.5, 9.5 }, { 6.5, 9.5 }, { 11, 5.5 }, { 11, 18.5 }, { 6.5, 14.5 }, { 3.5, 14.5 } });
}

QPainterPath VolumePath()
{
    QPainterPath waves;
    waves.arcMoveTo(QRectF(8.5, 8, 8, 8), 50);
    waves.arcTo(QRectF(8.5, 8, 8, 8), 50, -100);
    waves.arcMoveTo(QRectF(6, 4.5, 15, 15), 50);
    waves.arcTo(QRectF(6, 4.5, 15, 15), 50, -100);
    return SpeakerPath().united(Stroked(waves));
}

QPainterPath MutedPath()
{
    return SpeakerPath().united(
        Stroked(Lines({ { { 15, 9 }, { 21, 15 } }, { { 21, 9 }, { 15, 15 } } })));
}

QPainterPath ShufflePath()
{
    QPainterPath path
        = Lines({ { { 3, 7 }, { 7, 7 } }, { { 3, 17 }, { 7, 17 } }, { { 15, 7 }, { 21, 7 } },
            { { 15, 17 }, { 21, 17 } }, { { 18.5, 4.5 }, { 21, 7 }, { 18.5, 9.5 } },
            { { 18.5, 14.5 }, { 21, 17 }, { 18.5, 19.5 } } });
    path.moveTo(7, 7);
    path.cubicTo(11, 7, 11, 17, 15, 17);
    path.moveTo(7, 17);
    path.cubicTo(11, 17, 11, 7, 15, 7);
    return Stroked(path);
}

QPainterPath RepeatPath()
{
    return Stroked(
        Lines({ { { 4, 12 }, { 4, 7 }, { 20, 7 } }, { { 17.5, 4.5 }, { 20, 7 }, { 17.5, 9.5 } },
            { { 20, 12 }, { 20, 17 }, { 4, 17 } }, { { 6.5, 14.5 }, { 4, 17 }, { 6.5, 19.5 } } }));
}

QPainterPath RepeatOnePath()
{
    return RepeatPath().united(
        Stroked(Lines({ { { 10.7, 10.8 }, { 12.2, 9.8 }, { 12.2, 14.3 } } }), 1.6));
}

QPainterPath ListPath()
{
    return Stroked(
        Lines({ { { 4, 6 }, { 20, 6 } }, { { 4, 12 }, { 20, 12 } }, { { 4, 18 }, { 13, 18 } } }));
}

QPainterPath FullScreenPath()
{
    return Stroked(Lines({ { { 4, 9 }, { 4, 4 }, { 9, 4 } }, { { 15, 4 }, { 20, 4 }, { 20, 9 } },
        { { 20, 15 }, { 20, 20 }, { 15, 20 } }, { { 9, 20 }, { 4, 20 }, { 4, 15 } } }));
}

QPainterPath NotePath()
{
    QPainterPath heads;
    heads.addEllipse(QRectF(3.5, 15, 6.5, 5));
    heads.addEllipse(QRectF(14, 13, 6.5, 5));
    return heads.united(Stroked(Lines({ { { 9.3, 17.5 }, { 9.3, 6 }, { 19.8, 4 }, { 19.8, 15.5 } },
        { { 9.3, 9 }, { 19.8, 7 } } })));
}

QPainterPath SoundPath()
{
    QPainterPath path;
    constexpr double heights[] = { 6, 12, 18, 10, 15, 5 };
    double x = 3;
    for (const double height : heights) {
        path.addPath(Bar(x, (unit - height) / 2, 1.9, height));
        x += 3.3;
    }
    return path;
}

QPainterPath FolderPath()
{
    QPainterPath path = Lines(
        { { { 3.5, 18.5 }, { 3.5, 5.5 }, { 9, 5.5 }, { 11, 8 }, { 20.5, 8 }, { 20.5, 18.5 } } });
    path.closeSubpath();
    return Stroked(path);
}

QPainterPath StarPath()
{
    constexpr int points = 5;
    constexpr double outer = 9.6;
    constexpr double inner = 4.1;
    QPolygonF star;
    for (int i = 0; i < 2 * points; ++i) {
        const double angle = std::numbers::pi * (i / double(points) - 0.5);
        const double radius = i % 2 ? inner : outer;
        star.append({ 12 + radius * std::cos(angle), 12.6 + radius * std::sin(angle) });
    }
    return Filled(star);
}

QPainterPath NeverPath()
{
    QPainterPath path = Lines({ { { 6.7, 6.7 }, { 17.3, 17.3 } } });
    path.addEllipse(QRectF(4.5, 4.5, 15, 15));
    return Stroked(path);
}

QPixmap Painted(QIconEngine& engine, const QSize& size, QIcon::Mode mode, QIcon::State state)
{
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    engine.paint(&painter, pixmap.rect(), mode, state);
    return pixmap;
}

class ShapeEngine : public QIconEngine
{
public:
    ShapeEngine(IconShape off, IconShape on)
        : m_off(off)
        , m_on(on)
    {
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        const QPalette palette = QGuiApplication::palette();
        QColor color = palette.color(
            mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active, QPalette::ButtonText);
        if (mode != QIcon::Disabled && state == QIcon::On && m_off == m_on)
            color = Appearance::Accent();
        const double side = std::min(rect.width(), rect.height());
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.center() + QPointF(0.5 * (1 - side), 0.5 * (1 - side)));
        painter->scale(side / unit, side / unit);
        painter->fillPath(PathOf(state == QIcon::On ? m_on : m_off), color);
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return Painted(*this, size, mode, state);
    }

    QIconEngine* clone() const override { return new ShapeEngine(*this); }

private:
    IconShape m_off;
    IconShape m_on;
};

}

QPainterPath PathOf(IconShape shape)
{
    switch (shape) {
    case IconShape::Play:
        return Filled({ { 7, 4.5 }, { 19, 12 }, { 7, 19.5 } });
    case IconShape::Pause:
        return Bar(6.5, 4.5, 3.8, 15).united(Bar(13.7, 4.5, 3.8, 15));
    case IconShape::PreviousSong:
        return Mirrored(NextSongPath());
    case IconShape::NextSong:
        return NextSongPath();
    case IconShape::PreviousScript:
        return Mirrored(NextScriptPath());
    case IconShape::NextScript:
        return NextScriptPath();
    case IconShape::Volume:
        return VolumePath();
    case IconShape::Muted:
        return MutedPath();
    case IconShape::Shuffle:
        return ShufflePath();
    case IconShape::Repeat:
        return RepeatPath();
    case IconShape::RepeatOne:
        return RepeatOnePath();
    case IconShape::List:
        return ListPath();
    case IconShape::FullScreen:
        return FullScreenPath();
    case IconShape::Note:
        return NotePath();
    case IconShape::Sound:
        return SoundPath();
    case IconShape::Folder:
        return FolderPath();
    case IconShape::Star:
        return StarPath();
    case IconShape::Never:
        return NeverPath();
    }
    return {};
}

QIcon MakeIcon(IconShape shape)
{
    return QIcon(new ShapeEngine(shape, shape));
}

QIcon MakeIcon(IconShape off, IconShape on)
{
    return QIcon(new ShapeEngine(off, on));
}

}
