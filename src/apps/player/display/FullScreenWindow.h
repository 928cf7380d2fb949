#pragma once

#include <QTimer>
#include <QWidget>

namespace pxvis::player {

class PictureFrame;

// A black window over a whole screen with the picture in it. The pointer is hidden while it rests.
class FullScreenWindow : public QWidget
{
    Q_OBJECT

public:
    explicit FullScreenWindow(QScreen& screen);

    PictureFrame& Frame() { return *m_frame; }

signals:
    // By Esc, a double click, or the window manager; the window stays until its owner takes it
    // away.
    void LeaveAsked();
    void MinimisedChanged();

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void ShowPointer();

    PictureFrame* m_frame;
    QTimer m_pointerTimer;
};

}
