#pragma once

#include <QTimer>
#include <QWidget>

namespace pxvis::player {

class PictureFrame;

// A black window over a whole screen, which holds the picture's frame for a time. While the pointer
// rests, it and the controls are hidden.
class FullScreenWindow : public QWidget
{
    Q_OBJECT

public:
    // Takes the frame from its parent, who gets it back (setParent) before this goes.
    FullScreenWindow(QScreen& screen, PictureFrame& frame);

    // Gives the frame back as it was, for the window to go. Dialogs over it end without an answer.
    void Release();

    // Shown at the lower edge, over the picture; owned from now on.
    void SetControls(QWidget* controls);

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
    void NotePointer();
    void ShowControls(bool shown);
    void PlaceControls();
    void Rest();

    PictureFrame& m_frame;
    QWidget* m_controls = nullptr;
    QPoint m_pointer; // where it was last
    QTimer m_pointerTimer;
};

}
