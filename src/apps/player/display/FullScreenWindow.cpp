#include "apps/player/display/FullScreenWindow.h"

#include "apps/player/display/PictureFrame.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QScreen>

namespace pxvis::player {

namespace {

constexpr int pointerMilliseconds = 2000;

}

FullScreenWindow::FullScreenWindow(QScreen& screen, PictureFrame& frame)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint)
    , m_frame(frame)
{
    setAttribute(Qt::WA_QuitOnClose, false);
    setPalette(m_frame.palette());
    setScreen(&screen);
    setGeometry(screen.geometry());
    m_pointerTimer.setSingleShot(true);
    m_pointerTimer.setInterval(pointerMilliseconds);
    connect(
        &m_pointerTimer, &QTimer::timeout, this, [this] { m_frame.setCursor(Qt::BlankCursor); });
    connect(&m_frame, &PictureFrame::PointerMoved, this, &FullScreenWindow::ShowPointer);
    connect(&m_frame, &PictureFrame::DoubleClicked, this, &FullScreenWindow::LeaveAsked);
    m_pointerTimer.start();
    winId(); // else the frame had the root as parent for a moment, and the window manager a say
    m_frame.setParent(this);
}

FullScreenWindow::~FullScreenWindow()
{
    m_frame.unsetCursor();
}

void FullScreenWindow::ShowPointer()
{
    m_frame.unsetCursor();
    m_pointerTimer.start();
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
}

void FullScreenWindow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        emit MinimisedChanged();
}

}
