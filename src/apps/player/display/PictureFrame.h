#pragma once

#include <QLabel>
#include <QWidget>

namespace pxvis::player {

// The window that a visualization fills, one of the X server's own, and a line of text over the
// picture. What is done with the mouse over the picture comes here.
class PictureFrame : public QWidget
{
    Q_OBJECT

public:
    explicit PictureFrame(QWidget* parent);

    void SetText(const QString& text); // cut to one line of this width; "" for none
    void SetTextMargin(int height); // of the frame's lower part that the text is to stay above
    // To be called when the visualization has put its window in, which is above all others then.
    void RaiseText();

signals:
    void DoubleClicked();
    void MenuAsked(const QPoint& globalPosition);
    void PointerMoved();
    void Resized();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void PlaceText();

    QString m_text;
    int m_textMargin = 0;
    QLabel* m_strip = nullptr; // made for the first text
};

}
