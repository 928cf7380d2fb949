#include "toolkit/OQQtMessageQueues.h"

#include "toolkit/OQQtMessageWindow.h"
#include "toolkit/OQToolkit.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

namespace {

// Null where Qt has no queue, or one that may not be touched any more.
QAbstractEventDispatcher* Dispatcher()
{
    if (!QCoreApplication::instance() || OQToolkit::Get().IsDisplayLost())
        return nullptr;
    return QAbstractEventDispatcher::instance();
}

}

std::unique_ptr<IOQMessageWindow> OQQtMessageQueues::MakeWindow(IOQMessageWindowEvents& events)
{
    if (!Dispatcher())
        return m_fallback.MakeWindow(events);
    return std::make_unique<OQQtMessageWindow>(events);
}

// A thread may have windows of both kinds: those made before Qt came are the fallback's.
bool OQQtMessageQueues::Pump()
{
    bool wasAny = false;
    if (OQToolkit::Get().IsUsable())
        wasAny = OQToolkit::Get().PumpQt(0);
    else if (QAbstractEventDispatcher* const dispatcher = Dispatcher())
        wasAny = dispatcher->processEvents(QEventLoop::AllEvents);
    return m_fallback.Pump() || wasAny;
}
