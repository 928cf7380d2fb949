#include "toolkit/OQQtMessageWindow.h"

#include "foundation/OQLog.h"
#include "foundation/OQMap.h"
#include "toolkit/OQMessageEvent.h"

#include <QCoreApplication>
#include <QTimerEvent>

#include <algorithm>

namespace {

constexpr int MostPosted = 10000; // whoever doesn't empty his queue must not fill the memory

}

class OQQtMessageWindow::Receiver final : public QObject
{
public:
    explicit Receiver(IOQMessageWindowEvents& events)
        : m_events(&events)
    {
    }

    bool Post(uint32_t message)
    {
        if (m_posted.fetch_add(1) >= MostPosted) {
            --m_posted;
            return false;
        }
        QCoreApplication::postEvent(this, new OQMessageEvent(message, 0, 0));
        return true;
    }

    bool SetTimer(intptr_t id, int32_t milliseconds)
    {
        KillTimer(id);
        const int timer = startTimer(std::max(1, milliseconds), Qt::PreciseTimer);
        if (timer != 0)
            m_timers.Set(timer, id);
        return timer != 0;
    }

    bool KillTimer(intptr_t id)
    {
        for (const auto& timer : m_timers) {
            if (timer.value == id) {
                killTimer(timer.key);
                return m_timers.Remove(timer.key);
            }
        }
        return false;
    }

    // Now, or once what it handles is done.
    void Release()
    {
        m_events = nullptr;
        if (m_depth == 0)
            delete this;
        else
            deleteLater();
    }

protected:
    bool event(QEvent* event) override
    {
        if (event->type() == OQWindowMailbox::MessageEvent()) {
            --m_posted;
            const uint32_t message = static_cast<OQMessageEvent*>(event)->message;
            Tell([message](IOQMessageWindowEvents& events) { events.OnMessage(message); });
            return true;
        }
        return QObject::event(event);
    }

    void timerEvent(QTimerEvent* event) override
    {
        intptr_t id = 0;
        if (m_timers.Lookup(event->timerId(), id))
            Tell([id](IOQMessageWindowEvents& events) { events.OnTimer(id); });
    }

private:
    template <class Call>
    void Tell(Call call)
    {
        if (!m_events)
            return;
        ++m_depth;
        try {
            call(*m_events);
        } catch (...) { // Qt's loop and the host's are above
            OQLog(OQLogError, u"OQQtMessageWindow::Tell", u"A message failed.");
        }
        --m_depth;
    }

    IOQMessageWindowEvents* m_events; // null: the window is gone
    OQMap<int, intptr_t> m_timers; // Qt's number, ours
    std::atomic<int> m_posted = 0;
    int m_depth = 0;
};

OQQtMessageWindow::OQQtMessageWindow(IOQMessageWindowEvents& events)
    : m_receiver(new Receiver(events))
{
}

OQQtMessageWindow::~OQQtMessageWindow()
{
    m_receiver->Release();
}

bool OQQtMessageWindow::Post(uint32_t message)
{
    return m_receiver->Post(message);
}

bool OQQtMessageWindow::SetTimer(intptr_t id, int32_t milliseconds)
{
    return m_receiver->SetTimer(id, milliseconds);
}

bool OQQtMessageWindow::KillTimer(intptr_t id)
{
    return m_receiver->KillTimer(id);
}
