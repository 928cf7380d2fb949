#pragma once

#include <QWidget>

namespace pxvis::player {

// One line of plain text that takes the room there is and ends in "…" where that is too little.
class TextLabel : public QWidget
{
    Q_OBJECT

public:
    explicit TextLabel(QWidget* parent = nullptr);

    void SetText(const QString& text);

    QString Text() const { return m_text; }

    void SetAlignment(Qt::Alignment alignment);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_text;
    Qt::Alignment m_alignment = Qt::AlignLeft | Qt::AlignVCenter;
};

}
