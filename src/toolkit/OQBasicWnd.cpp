#include "toolkit/OQBasicWnd.h"

#include "foundation/OQLog.h"
#include "os/Clock.h"
#include "toolkit/OQMessageEvent.h"
#include "toolkit/OQToolkit.h"
#include "toolkit/OQWindowWidget.h"
#include "toolkit/OQWndDeleteProbe.h"
#include "toolkit/QtText.h"

#include <QCoreApplication>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

// Asking the window manager's notes takes several round trips; they don't change often.
constexpr int64_t MinimisedReadNanoseconds = 500'000'000;

OQDisplayConnection* Server()
{
    return OQToolkit::Get().GetDisplay();
}

}

OQBasicWnd::OQBasicWnd()
    : OQCallbackWnd(OQWndKindWindow)
    , m_mailbox(std::make_shared<OQWindowMailbox>())
{
}

OQBasicWnd::OQBasicWnd(uintptr_t handle)
    : OQCallbackWnd(OQWndKindWrapper)
    , m_mailbox(std::make_shared<OQWindowMailbox>())
    , m_wrapped(handle)
{
}

OQBasicWnd::~OQBasicWnd()
{
    Destroy();
    if (m_widget) // deleted in OnTerminate; Destroy goes on behind that
        m_widget->Disconnect();
}

bool OQBasicWnd::CreateChild(uintptr_t parent, const OQChar* className)
{
    constexpr const OQChar* scope = u"OQBasicWnd::CreateChild";
    if (m_widget || m_wrapped) {
        OQLog(OQLogError, scope, u"There is a window already.");
        return false;
    }
    OQToolkit& toolkit = OQToolkit::Get();
    if (!toolkit.EnsureApplication())
        return false;
    auto widget = std::make_unique<OQWindowWidget>(m_mailbox);
    if (parent == 0 || parent > std::numeric_limits<uint32_t>::max()
        || !widget->Embed(static_cast<uint32_t>(parent), className)) {
        OQLog(OQLogError, scope, u"The window %d can't hold one of ours.", { int64_t(parent) });
        return false;
    }
    toolkit.AddWindow(this);
    m_widget = widget.release();
    m_widget->Connect(*this);
    SetText(m_text);

    const OQWndDeleteProbe probe(*this);
    OnInitialize();
    if (!probe.IsDeleted() && m_widget)
        TellSize();
    if (!probe.IsDeleted() && m_widget)
        m_widget->show();
    return !probe.IsDeleted() && m_widget;
}

void OQBasicWnd::Destroy()
{
    if (!m_widget || m_ending)
        return;
    const QPointer<OQWindowWidget> widget(m_widget);
    Terminate();
    if (widget)
        OQWindowWidget::Release(widget);
}

void OQBasicWnd::OnWindowLost(bool widgetIsGone)
{
    const QPointer<OQWindowWidget> widget(widgetIsGone ? nullptr : m_widget);
    m_widget = nullptr;
    if (widget)
        widget->Disconnect();
    if (m_ending) // Destroy goes on behind OnTerminate
        return;
    Terminate();
    if (widget)
        OQWindowWidget::Release(widget);
}

// The object may be gone behind it.
void OQBasicWnd::Terminate()
{
    OQToolkit::Get().RemoveWindow(this);
    m_ending = true;
    const OQWndDeleteProbe probe(*this);
    try {
        OnTerminate();
    } catch (...) { // it comes out of destructors, too
        OQLog(OQLogError, u"OQBasicWnd::Terminate", u"The end of a window failed.");
    }
    if (probe.IsDeleted())
        return;
    m_ending = false;
    m_widget = nullptr;
    m_timers.ClearAll();
    m_toldSize = { -1, -1 };
}

uintptr_t OQBasicWnd::GetHandle() const
{
    return m_widget ? m_widget->GetHandle() : m_wrapped;
}

bool OQBasicWnd::IsVisible() const
{
    const uint32_t handle = static_cast<uint32_t>(GetHandle());
    if (handle == 0 || !Server() || (m_widget && !m_widget->isVisible())
        || !Server()->IsViewable(handle))
        return false;
    const int64_t now = pxvis::os::MonotonicNanoseconds();
    if (m_minimisedReadAt == 0 || now - m_minimisedReadAt > MinimisedReadNanoseconds) {
        m_minimised = Server()->IsMinimised(handle);
        m_minimisedReadAt = now;
    }
    return !m_minimised;
}

OQRect OQBasicWnd::GetRect() const
{
    OQRect rect;
    if (m_widget)
        rect = GetClientRect(); // it fills its parent
    else if (m_wrapped && Server())
        Server()->GetRect(static_cast<uint32_t>(m_wrapped), rect);
    return rect;
}

OQSize OQBasicWnd::GetClientSize() const
{
    return m_widget ? m_widget->GetDeviceSize() : GetSize();
}

OQRect OQBasicWnd::GetClientRect() const
{
    const OQSize size = GetClientSize();
    return { 0, 0, size.cx, size.cy };
}

void OQBasicWnd::SetText(const OQString& text)
{
    m_text = text;
    if (m_widget)
        m_widget->SetTitle(OQToQt(text));
}

void OQBasicWnd::Enable(bool enable)
{
    if (m_widget)
        m_widget->setEnabled(enable);
}

void OQBasicWnd::LetInputThrough()
{
    if (m_widget)
        m_widget->LetInputThrough();
}

void OQBasicWnd::SetFocus()
{
    if (m_widget)
        m_widget->TakeKeyboardFocus();
}

void OQBasicWnd::SetCapture()
{
    if (m_widget)
        m_widget->grabMouse();
}

void OQBasicWnd::ReleaseCapture()
{
    if (m_widget)
        m_widget->releaseMouse();
}

void OQBasicWnd::Invalidate()
{
    m_mailbox->Invalidate();
}

void OQBasicWnd::Update()
{
    if (!m_widget)
        return;
    const QPointer<OQWindowWidget> widget(m_widget);
    QCoreApplication::sendPostedEvents(widget, OQWindowMailbox::InvalidateEvent());
    if (widget && widget->IsPaintDue())
        widget->repaint();
}

bool OQBasicWnd::Post(uint32_t message, intptr_t p1, intptr_t p2)
{
    return m_mailbox->Post(message, p1, p2);
}

void OQBasicWnd::Send(uint32_t message, intptr_t p1, intptr_t p2)
{
    if (m_widget)
        DispatchMessage(message, p1, p2);
}

bool OQBasicWnd::SetTimer(int32_t id, int32_t milliseconds)
{
    if (!m_widget)
        return false;
    KillTimer(id);
    const int timer = m_widget->startTimer(std::max(1, milliseconds), Qt::PreciseTimer);
    if (timer != 0)
        m_timers.Set(id, timer);
    return timer != 0;
}

bool OQBasicWnd::KillTimer(int32_t id)
{
    int timer = 0;
    if (!m_widget || !m_timers.Lookup(id, timer))
        return false;
    m_widget->killTimer(timer);
    return m_timers.Remove(id);
}

bool OQBasicWnd::FindTimer(int platformTimer, int32_t& id) const
{
    id = 0;
    for (const auto& timer : m_timers) {
        if (timer.value == platformTimer) {
            id = timer.key;
            return true;
        }
    }
    return false;
}

void OQBasicWnd::TellSize()
{
    const OQSize size = GetClientSize();
    if (!m_widget || size == m_toldSize)
        return;
    m_toldSize = size;
    OnSize(size);
}

bool OQBasicWnd::OnPlatformEvent(QEvent& event)
{
    if (event.type() == OQWindowMailbox::InvalidateEvent()) {
        m_mailbox->OnInvalidated();
        m_widget->SetPaintDue();
        return true;
    }
    if (event.type() == OQWindowMailbox::MessageEvent()) {
        const auto& message = static_cast<const OQMessageEvent&>(event);
        DispatchMessage(message.message, message.p1, message.p2);
        return true;
    }
    return false;
}

void OQBasicWnd::DispatchMessage(uint32_t message, intptr_t p1, intptr_t p2)
{
    OnMessage(message, p1, p2);
}
