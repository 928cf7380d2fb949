#include "toolkit/OQWindowWidget.h"

#include "foundation/OQLog.h"
#include "foundation/OQString.h"
#include "toolkit/OQBasicWnd.h"
#include "toolkit/OQInputFocus.h"
#include "toolkit/OQToolkit.h"

#include <QApplication>
#include <QEvent>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <xcb/shape.h>

namespace {

// Of all widgets; the thread of the windows only.
int g_eventDepth = 0;
int g_paintDepth = 0;

// Qt's loop and the host's are above.
template <class Call>
void Guard(Call call)
{
    try {
        call();
    } catch (...) {
        OQLog(OQLogError, u"OQWindowWidget::Guard", u"An event of a window failed.");
    }
}

}

OQWindowWidget::OQWindowWidget(std::shared_ptr<OQWindowMailbox> mailbox)
    : m_mailbox(std::move(mailbox))
{
    // Every pixel is painted by the window, or by whoever puts a window of his own over it.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_NativeWindow);
    setAttribute(Qt::WA_DontCreateNativeAncestors);
    // The host's windows decide what is active and when the program ends.
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
}

OQWindowWidget::~OQWindowWidget()
{
    OQBasicWnd* const wnd = m_wnd;
    Disconnect();
    if (wnd) // a parent of the same toolkit takes the widget along
        wnd->OnWindowLost(true);
    destroy(); // before the foreign parent
}

bool OQWindowWidget::Embed(uint32_t parent, const OQChar* className)
{
    if (QWidget* const parentWidget = QWidget::find(parent)) {
        setParent(parentWidget);
        parentWidget->installEventFilter(this);
        winId();
    } else if (!EmbedForeign(parent)) {
        return false;
    }
    FillParent();
    m_className = OQString(className).ToUtf8();
    MarkWindow();
    return true;
}

void OQWindowWidget::Connect(OQBasicWnd& wnd)
{
    m_wnd = &wnd;
    m_mailbox->Open(this);
}

// The watch comes first, so that no change of the parent is missed behind the look at its size.
bool OQWindowWidget::EmbedForeign(uint32_t parent)
{
    OQDisplayConnection& display = *OQToolkit::Get().GetDisplay();
    if (!display.Watch(parent, this) || !display.GetParentSize(parent, m_foreignSize))
        return false;
    m_foreignParent.reset(QWindow::fromWinId(parent));
    if (!m_foreignParent)
        return false;
    winId();
    windowHandle()->setParent(m_foreignParent.get());
    return true;
}

// On Qt's own connection, behind the request that makes the window; Qt makes it anew when a host of
// the same Qt moves the parent to another window.
void OQWindowWidget::MarkWindow()
{
    windowHandle()->setTitle(m_title);
    auto* const native = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!native)
        return;
    std::string both = m_className; // instance and class, a zero behind each
    both += '\0';
    both += m_className;
    both += '\0';
    xcb_change_property(native->connection(), XCB_PROP_MODE_REPLACE, GetHandle(), XCB_ATOM_WM_CLASS,
        XCB_ATOM_STRING, 8, static_cast<uint32_t>(both.size()), both.data());
    if (m_letsInputThrough)
        EmptyInputShape(native->connection());
}

// An X server without shapes leaves the input to the window.
void OQWindowWidget::EmptyInputShape(xcb_connection_t* connection)
{
    const auto* const shape = xcb_get_extension_data(connection, &xcb_shape_id);
    if (shape && shape->present)
        xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT,
            XCB_CLIP_ORDERING_UNSORTED, GetHandle(), 0, 0, 0, nullptr);
}

// The widget as well, for a parent of the same toolkit.
void OQWindowWidget::LetInputThrough()
{
    m_letsInputThrough = true;
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    MarkWindow();
}

void OQWindowWidget::SetTitle(const QString& title)
{
    m_title = title;
    windowHandle()->setTitle(title);
}

void OQWindowWidget::Disconnect()
{
    m_wnd = nullptr;
    m_mailbox->Close(this);
    if (OQDisplayConnection* display = OQToolkit::Get().GetDisplay())
        display->Unwatch(this);
}

void OQWindowWidget::Release(OQWindowWidget* widget)
{
    widget->Disconnect();
    if (!OQToolkit::Get().IsUsable())
        return;
    if (widget->m_eventDepth == 0) {
        delete widget;
        return;
    }
    if (!widget->m_painting)
        widget->hide();
    widget->deleteLater();
}

// Rounded up where Qt's units are larger than a pixel, so that no edge of the parent shows; the X
// server cuts off the rest.
void OQWindowWidget::FillParent()
{
    if (!m_foreignParent) {
        setGeometry(parentWidget()->rect());
        return;
    }
    const double ratio = devicePixelRatioF();
    setGeometry(0, 0, std::max(1, int(std::ceil(m_foreignSize.cx / ratio))),
        std::max(1, int(std::ceil(m_foreignSize.cy / ratio))));
}

bool OQWindowWidget::IsInEvent()
{
    return g_eventDepth > 0;
}

bool OQWindowWidget::IsInPaint()
{
    return g_paintDepth > 0;
}

OQSize OQWindowWidget::GetDeviceSize() const
{
    if (m_foreignParent)
        return m_foreignSize;
    const double ratio = devicePixelRatioF();
    return { int32_t(std::lround(width() * ratio)), int32_t(std::lround(height() * ratio)) };
}

uint32_t OQWindowWidget::GetHandle() const
{
    return static_cast<uint32_t>(internalWinId());
}

// Qt only notes that an embedded window is active; the server's focus stays with the host.
void OQWindowWidget::TakeKeyboardFocus()
{
    setFocus(Qt::OtherFocusReason);
    if (m_foreignParent)
        OQGiveInputFocus(GetHandle());
}

void OQWindowWidget::SetPaintDue()
{
    m_paintDue = true;
    update();
}

bool OQWindowWidget::event(QEvent* event)
{
    if (!m_wnd)
        return QWidget::event(event);
    if (event->type() == QEvent::Paint)
        m_paintDue = false;
    if (event->type() == QEvent::WinIdChange && internalWinId() != 0)
        MarkWindow();
    const QPointer<OQWindowWidget> self(this);
    const int paint = event->type() == QEvent::Paint ? 1 : 0;
    const bool painting = std::exchange(m_painting, paint != 0);
    ++m_eventDepth;
    ++g_eventDepth;
    g_paintDepth += paint;
    bool isDone = false;
    Guard([&] { isDone = m_wnd->OnPlatformEvent(*event); });
    --g_eventDepth;
    g_paintDepth -= paint;
    if (!self)
        return true;
    --m_eventDepth;
    m_painting = painting;
    return isDone || QWidget::event(event);
}

bool OQWindowWidget::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize && watched == parent())
        FillParent();
    return false;
}

void OQWindowWidget::OnParentSize(const OQSize& size)
{
    if (size == m_foreignSize)
        return;
    m_foreignSize = size;
    FillParent();
    if (m_wnd)
        Guard([this] { m_wnd->TellSize(); });
}

void OQWindowWidget::OnParentDestroyed()
{
    if (m_wnd)
        m_wnd->OnWindowLost(false);
}
