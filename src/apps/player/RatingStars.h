#pragma once

#include <QWidget>

namespace pxvis::player {

// Five stars, and a sign for "never", to be clicked or stepped through by keys. Keeps no rating: it
// asks for one and shows what it is told.
class RatingStars : public QWidget
{
    Q_OBJECT

public:
    explicit RatingStars(QWidget* parent = nullptr);

    void SetRating(int rating); // as SongLibrary::ScriptRating
    QSize sizeHint() const override;

signals:
    void Rated(int rating); // 0: the rating that is there is taken away

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    QRect PlaceOf(int rating) const;
    int RatingAt(const QPoint& point) const;
    void Tell();

    int m_rating = 0;
    int m_hovered = 0;
};

}
