#include "apps/player/display/FullScreenWindow.h"

#include "apps/player/display/PictureFrame.h"

#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QDialog>
#include <QKeyEvent>
#include <QScreen>

namespace pxvis::player {

namespace {

constexpr int pointerMilliseconds = 3000;

}

FullScreenWindow::FullScreenWindow(QScreen& screen, PictureFrame& frame)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint)
    , m_frame(frame)
    , m_pointer(QCursor::pos())
{
    setAttribute(Qt::WA_QuitOnClose, false);
    setPalette(m_frame.palette());
    setScreen(&screen);
    setGeometry(screen.geometry());
    m_pointerTimer.setSingleShot(true);
    m_pointerTimer.setInterval(pointerMilliseconds);
    connect(&m_pointerTimer, &QTimer::timeout, this, &FullScreenWindow::Rest);
    connect(&m_frame, &PictureFrame::PointerMoved, this, &FullScreenWindow::NotePointer);
    connect(&m_frame, &PictureFrame::DoubleClicked, this, &FullScreenWindow::LeaveAsked);
    m_pointerTimer.start();
    winId(); // else the frame had the root as parent for a moment, and the window manager a say
    m_frame.setParent(this);
}

void FullScreenWindow::Release()
{
    m_pointerTimer.stop();
    m_frame.disconnect(this);
    m_frame.unsetCursor();
    m_frame.SetTextMargin(0);
    // A dialog lies on the stack of whoever asked, who is still in it.
    for (QDialog* dialog : findChildren<QDialog*>(Qt::FindDirectChildrenOnly)) {
        dialog->setParent(nullptr, dialog->windowFlags());
        dialog->reject();
    }
}

void FullScreenWindow::SetControls(QWidget* controls)
{
    m_controls = controls;
    m_controls->setParent(this);
    m_controls->hide();
    // A window of its own: the frame's covers what is painted here. It is not black, as this is.
    m_controls->setAttribute(Qt::WA_NativeWindow);
    m_controls->setAttribute(Qt::WA_DontCreateNativeAncestors);
    QPalette colors = m_controls->palette();
    for (const QPalette::ColorRole role : { QPalette::Window, QPalette::WindowText })
        colors.setColor(role, QApplication::palette().color(role));
    m_controls->setPalette(colors);
    m_controls->setAutoFillBackground(true);
    PlaceControls();
}

// The server tells of moves that nobody made, as when windows come and go.
void FullScreenWindow::NotePointer()
{
    if (QCursor::pos() == m_pointer)
        return;
    m_pointer = QCursor::pos();
    m_frame.unsetCursor();
    ShowControls(true);
    m_pointerTimer.start();
}

void FullScreenWindow::ShowControls(bool shown)
{
    if (!m_controls || m_controls->isVisible() == shown)
        return;
    PlaceControls();
    m_controls->setVisible(shown);
    m_controls->raise();
    m_frame.SetTextMargin(shown ? m_controls->height() : 0);
    if (!shown)
        setFocus(); // not on a control that nobody sees
}

void FullScreenWindow::PlaceControls()
{
    const int controlsHeight = m_controls->sizeHint().height();
    m_controls->setGeometry(0, height() - controlsHeight, width(), controlsHeight);
}

void FullScreenWindow::Rest()
{
    const bool isUsed = m_controls && m_controls->isVisible()
        && (m_controls->geometry().contains(mapFromGlobal(QCursor::pos()))
            || QApplication::mouseButtons() != Qt::NoButton);
    if (isUsed) {
        m_pointerTimer.start();
        return;
    }
    m_frame.setCursor(Qt::BlankCursor);
    ShowControls(false);
}

void FullScreenWindow::closeEvent(QCloseEvent* event)
{
    event->ignore();
    emit LeaveAsked();
}

void FullScreenWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        emit LeaveAsked();
    else
        QWidget::keyPressEvent(event);
}

void FullScreenWindow::resizeEvent(QResizeEvent*)
{
    m_frame.setGeometry(rect());
    if (m_controls)
        PlaceControls();
}

void FullScreenWindow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        emit MinimisedChanged();
}

}
