#include "apps/player/LevelMeter.h"

#include "apps/player/Appearance.h"

#include <QPainter>

#include <algorithm>

namespace pxvis::player {

namespace {

constexpr double fullLevel = 255;
constexpr int impact = 101; // levels from here on are impacts to the scripts
constexpr double levelFall = 0.82; // a moment, of 50 ms
constexpr double lampFall = 0.72;

QString LevelWord()
{
    return LevelMeter::tr("Level");
}

QString BeatWord()
{
    return LevelMeter::tr("Beat");
}

}

LevelMeter::LevelMeter(QWidget* parent)
    : QWidget(parent)
{
    setToolTip(tr("Level, with the mark above which it is an impact, and beat"));
    setAccessibleName(tr("Level and beat"));
    setFixedSize(sizeHint());
}

QSize LevelMeter::sizeHint() const
{
    const int words = fontMetrics().horizontalAdvance(LevelWord() + BeatWord());
    return { words + 168, std::max(16, fontMetrics().height()) };
}

void LevelMeter::Show(int level, bool beat)
{
    const bool wasDark = IsDark();
    m_level = std::max<double>(level, m_level * levelFall);
    m_lamp = beat ? 1.0 : m_lamp * lampFall;
    if (!wasDark || !IsDark())
        update();
}

void LevelMeter::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    // "Level" ===|== "Beat" o
    const double middle = height() / 2.0;
    const double left = fontMetrics().horizontalAdvance(LevelWord()) + 8.0;
    const double right = width() - 34.0 - fontMetrics().horizontalAdvance(BeatWord());
    const QRectF bar(left, middle - 3, right - left, 6);
    painter.setBrush(Appearance::Line());
    painter.drawRoundedRect(bar, 3, 3);
    QRectF filled = bar;
    filled.setWidth(bar.width() * std::clamp(m_level / fullLevel, 0.0, 1.0));
    painter.setBrush(m_level >= impact ? QColor(0xFF, 0xB4, 0x54) : Appearance::Accent());
    painter.drawRoundedRect(filled, 3, 3);
    painter.setBrush(Appearance::Dimmed());
    painter.drawRect(QRectF(bar.left() + bar.width() * impact / fullLevel, middle - 5, 1, 10));

    const QPointF lamp(width() - 11, middle);
    QColor color(0xFF, 0x5F, 0x6D);
    painter.setBrush(Appearance::Line());
    painter.drawEllipse(lamp, 5, 5);
    color.setAlphaF(static_cast<float>(m_lamp));
    painter.setBrush(color);
    painter.drawEllipse(lamp, 5 + 1.5 * m_lamp, 5 + 1.5 * m_lamp);

    painter.setPen(Appearance::Dimmed());
    const QRectF whole = rect();
    painter.drawText(whole, Qt::AlignLeft | Qt::AlignVCenter, LevelWord());
    painter.drawText(whole.adjusted(0, 0, -24, 0), Qt::AlignRight | Qt::AlignVCenter, BeatWord());
}

}
