#include "toolkit/OQToolkit.h"

#include "foundation/IOQMessageQueue.h"
#include "foundation/OQLog.h"
#include "toolkit/OQBasicWnd.h"
#include "toolkit/OQDisplayConnection.h"
#include "toolkit/OQMakeApplication.h"
#include "toolkit/OQWindowWidget.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QDeadlineTimer>
#include <QSocketNotifier>
#include <QThread>

#include <algorithm>
#include <utility>

namespace {

constexpr const OQChar* EnsureScope = u"OQToolkit::EnsureApplication";
constexpr int32_t MostPumpMilliseconds = 1000; // a host's own work goes on

}

OQToolkit& OQToolkit::Get()
{
    static OQToolkit* const toolkit = new OQToolkit;
    return *toolkit;
}

OQToolkit::OQToolkit() = default;

bool OQToolkit::EnsureApplication()
{
    const std::lock_guard guard(m_lock);
    if (m_displayLost) {
        OQLog(OQLogError, EnsureScope, u"The display is gone.");
        return false;
    }
    if (!QCoreApplication::instance() && !OQMakeApplication())
        return false;
    const auto* const application = qobject_cast<QApplication*>(QCoreApplication::instance());
    if (!application || QGuiApplication::platformName() != u"xcb") {
        OQLog(OQLogError, EnsureScope, u"The program's Qt application has no X11 windows.");
        return false;
    }
    if (application->thread() != QThread::currentThread()) {
        OQLog(OQLogError, EnsureScope, u"Windows belong on the thread of the Qt application.");
        return false;
    }
    return OpenDisplay();
}

bool OQToolkit::OpenDisplay()
{
    if (!m_display) {
        m_display = OQDisplayConnection::Open([this] { WakeForDisplay(); });
        if (!m_display) {
            OQLog(OQLogError, EnsureScope, u"There is no connection to the display.");
            return false;
        }
    }
    // Once for each application: a host may end its own and make another one later.
    if (!m_notifier) {
        m_notifier = new QSocketNotifier(
            m_display->GetDescriptor(), QSocketNotifier::Read, QCoreApplication::instance());
        QObject::connect(m_notifier, &QSocketNotifier::activated, [this] { CheckDisplay(); });
        qAddPostRoutine([] { Get().OnApplicationEnd(); });
    }
    return true;
}

bool OQToolkit::IsUsable() const
{
    const QCoreApplication* const application = QCoreApplication::instance();
    return application && !m_displayLost && application->thread() == QThread::currentThread();
}

bool OQToolkit::ProcessEvents(int32_t milliseconds)
{
    const bool isUsable = CheckDisplay();
    if (isUsable
        && (QThread::currentThread()->loopLevel() > 0 || OQWindowWidget::IsInPaint()
            || m_holds > 0))
        return true;
    if (isUsable)
        PumpQt(milliseconds);
    if (IOQMessageQueues* queues = IOQMessageQueues::Get())
        queues->Pump();
    return isUsable && !m_displayLost;
}

bool OQToolkit::PumpQt(int32_t milliseconds)
{
    if (!CheckDisplay())
        return false;
    QDeadlineTimer deadline(std::clamp(milliseconds, 0, MostPumpMilliseconds));
    QAbstractEventDispatcher* const dispatcher = QAbstractEventDispatcher::instance();
    bool wasAny = false;
    ++m_pumps;
    while (CheckDisplay() && dispatcher->processEvents(QEventLoop::AllEvents)) {
        wasAny = true;
        if (deadline.hasExpired())
            break;
    }
    // Without a loop of Qt's nobody else deletes what was to be deleted later. Whoever said so may
    // still be further up the stack, though, where this was called out of an event.
    if (!m_displayLost && QThread::currentThread()->loopLevel() == 0 && m_pumps == 1
        && !OQWindowWidget::IsInEvent())
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    --m_pumps;
    return wasAny;
}

void OQToolkit::AddWindow(OQBasicWnd* wnd)
{
    m_windows.Add(wnd);
}

void OQToolkit::RemoveWindow(OQBasicWnd* wnd)
{
    for (int i = m_windows.GetCount() - 1; i >= 0; --i) {
        if (m_windows[i] == wnd)
            m_windows.Remove(i);
    }
}

bool OQToolkit::CheckDisplay()
{
    if (!IsUsable())
        return false;
    if (m_display && !m_display->Dispatch() && !m_displayLost)
        OnDisplayLost();
    return !m_displayLost;
}

void OQToolkit::OnDisplayLost()
{
    OQLog(
        OQLogError, u"OQToolkit::OnDisplayLost", u"The display is gone, and all windows with it.");
    m_displayLost = true;
    if (m_notifier)
        m_notifier->setEnabled(false);
    EndWindows();
}

void OQToolkit::OnApplicationEnd()
{
    EndWindows();
    delete std::exchange(m_notifier, nullptr);
}

void OQToolkit::EndWindows()
{
    while (m_windows.GetCount() > 0) // each takes itself out, and may take others
        m_windows.Last()->OnWindowLost(false);
}

// By way of the loop: whoever asked the display a question doesn't expect events.
void OQToolkit::WakeForDisplay()
{
    if (m_notifier)
        QMetaObject::invokeMethod(
            m_notifier, [this] { CheckDisplay(); }, Qt::QueuedConnection);
}
