#pragma once

#include <QSlider>

namespace pxvis::player {

// A level slider whose handle goes to where it is pressed, and is only to be seen when it can be
// had.
class JumpSlider : public QSlider
{
    Q_OBJECT

public:
    explicit JumpSlider(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    int ValueAt(double x) const; // of a place in the widget

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    QRectF Groove() const;
};

}
