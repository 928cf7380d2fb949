#pragma once

#include <QWidget>

namespace pxvis::player {

// A bar for the level and a lamp for the beat, which goes out by itself as it is drawn.
class LevelMeter : public QWidget
{
    Q_OBJECT

public:
    explicit LevelMeter(QWidget* parent = nullptr);

    // Of one more moment; 0 to 255.
    void Show(int level, bool beat);

    bool IsDark() const { return m_level < 1 && m_lamp < minimalLamp; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    static constexpr double minimalLamp = 0.02;

    double m_level = 0;
    double m_lamp = 0; // 0 to 1
};

}
