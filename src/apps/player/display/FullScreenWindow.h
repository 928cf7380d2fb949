#pragma once

#include <QTimer>
#include <QWidget>

namespace pxvis::player {

class PictureFrame;

// A black window over a whole screen, which holds the picture's frame for a time. The pointer is
// hidden while it rests.
class FullScreenWindow : public QWidget
{
    Q_OBJECT

public:
    // Takes the frame from its parent, who gets it back (setParent) before this goes.
    FullScreenWindow(QScreen& screen, PictureFrame& frame);
    ~FullScreenWindow() override;

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

    PictureFrame& m_frame;
    QTimer m_pointerTimer;
};

}
