#include "apps/player/TextLabel.h"

#include "apps/player/collection/Song.h"

#include <QFontMetrics>
#include <QPainter>

namespace pxvis::player {

TextLabel::TextLabel(QWidget* parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void TextLabel::SetText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text.simplified();
    setToolTip(ToolTipOf(m_text));
    setAccessibleName(m_text);
    updateGeometry();
    update();
}

void TextLabel::SetAlignment(Qt::Alignment alignment)
{
    m_alignment = alignment;
    update();
}

QSize TextLabel::sizeHint() const
{
    const QFontMetrics metrics(font());
    return { metrics.horizontalAdvance(m_text) + 2, metrics.height() };
}

QSize TextLabel::minimumSizeHint() const
{
    return { 0, QFontMetrics(font()).height() };
}

void TextLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    const QString shown
        = QFontMetrics(font()).elidedText(m_text, Qt::ElideRight, contentsRect().width());
    painter.drawText(contentsRect(), static_cast<int>(m_alignment) | Qt::TextSingleLine, shown);
}

}
