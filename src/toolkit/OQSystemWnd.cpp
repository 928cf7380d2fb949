#include "toolkit/OQSystemWnd.h"

#include "toolkit/OQWidgetPaint.h"
#include "toolkit/OQWindowWidget.h"
#include "toolkit/QtText.h"

#include <QEnterEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTimerEvent>
#include <QWheelEvent>

#include <cmath>

namespace {

uint32_t ModifiersOf(const QInputEvent& event)
{
    const Qt::KeyboardModifiers pressed = event.modifiers();
    return (pressed & Qt::ShiftModifier ? OQModifierShift : 0U)
        | (pressed & Qt::ControlModifier ? OQModifierControl : 0U)
        | (pressed & Qt::AltModifier ? OQModifierAlt : 0U);
}

int32_t ButtonOf(Qt::MouseButton button)
{
    switch (button) {
    case Qt::LeftButton:
        return OQMouseLeft;
    case Qt::RightButton:
        return OQMouseRight;
    case Qt::MiddleButton:
        return OQMouseMiddle;
    default:
        return OQMouseNone;
    }
}

OQMouseAction ActionOf(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
        return OQMouseAction::Press;
    case QEvent::MouseButtonRelease:
        return OQMouseAction::Release;
    case QEvent::MouseButtonDblClick:
        return OQMouseAction::DoubleClick;
    case QEvent::Wheel:
        return OQMouseAction::Wheel;
    case QEvent::Enter:
        return OQMouseAction::Enter;
    default:
        return OQMouseAction::Move;
    }
}

OQMouseEvent MouseEventOf(const QSinglePointEvent& event, double ratio)
{
    OQMouseEvent mouse;
    mouse.action = ActionOf(event.type());
    mouse.x = int32_t(std::floor(event.position().x() * ratio));
    mouse.y = int32_t(std::floor(event.position().y() * ratio));
    mouse.button = ButtonOf(event.button());
    mouse.modifiers = ModifiersOf(event);
    if (event.type() == QEvent::Wheel)
        mouse.wheel = static_cast<const QWheelEvent&>(event).angleDelta().y();
    return mouse;
}

OQKeyEvent KeyEventOf(const QKeyEvent& event)
{
    OQKeyEvent key;
    key.pressed = event.type() == QEvent::KeyPress;
    key.repeated = event.isAutoRepeat();
    key.key = event.nativeVirtualKey();
    key.modifiers = ModifiersOf(event);
    const QString text = event.text();
    key.text
        = OQString(reinterpret_cast<const OQChar*>(text.utf16()), static_cast<int>(text.size()));
    return key;
}

}

void OQSystemWnd::RegisterMessage(uint32_t message, MessageHandler handler)
{
    m_messages.Set(message, std::move(handler));
}

// Behind an event operation nothing of the object may be used: it may have deleted it.
bool OQSystemWnd::OnPlatformEvent(QEvent& event)
{
    int32_t timer = 0;
    switch (event.type()) {
    case QEvent::Paint:
        Paint();
        return true;
    case QEvent::Resize:
        TellSize();
        return false;
    case QEvent::Timer:
        if (!FindTimer(static_cast<QTimerEvent&>(event).timerId(), timer))
            return false;
        OnTimer(timer);
        return true;
    case QEvent::MouseButtonPress:
        SetFocus();
        [[fallthrough]];
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::Enter:
        m_lastMouse = MouseEventOf(
            static_cast<QSinglePointEvent&>(event), GetWidget()->devicePixelRatioF());
        return OnMouse(OQMouseEvent(m_lastMouse));
    case QEvent::Leave:
        return OnMouse({ .action = OQMouseAction::Leave, .x = m_lastMouse.x, .y = m_lastMouse.y });
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        return OnKey(KeyEventOf(static_cast<QKeyEvent&>(event)));
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        OnFocus(event.type() == QEvent::FocusIn);
        return false;
    default:
        return OQMessageWnd::OnPlatformEvent(event);
    }
}

void OQSystemWnd::DispatchMessage(uint32_t message, intptr_t p1, intptr_t p2)
{
    const auto* const registered = m_messages.Find(message);
    if (!registered) {
        OQMessageWnd::DispatchMessage(message, p1, p2);
        return;
    }
    const MessageHandler handler = registered->value; // it may go with the object
    handler(p1, p2);
}

void OQSystemWnd::Paint()
{
    OQWidgetPaint paint(*GetWidget());
    OnPaint(paint);
}
