#include "toolkit/OQWindowMailbox.h"

#include "toolkit/OQMessageEvent.h"

#include <QCoreApplication>

void OQWindowMailbox::Open(QObject* receiver)
{
    const std::lock_guard guard(m_lock);
    m_receiver = receiver;
    m_invalidated = false;
}

// A widget that goes late, behind its last event, finds the mailbox with the one that came after
// it.
void OQWindowMailbox::Close(const QObject* receiver)
{
    const std::lock_guard guard(m_lock);
    if (m_receiver == receiver)
        m_receiver = nullptr;
}

// Posting under the lock keeps the receiver alive for that long.
bool OQWindowMailbox::Post(uint32_t message, intptr_t p1, intptr_t p2)
{
    const std::lock_guard guard(m_lock);
    if (m_receiver)
        QCoreApplication::postEvent(m_receiver, new OQMessageEvent(message, p1, p2));
    return m_receiver != nullptr;
}

void OQWindowMailbox::Invalidate()
{
    const std::lock_guard guard(m_lock);
    if (!m_receiver || m_invalidated)
        return;
    QCoreApplication::postEvent(
        m_receiver, new QEvent(static_cast<QEvent::Type>(InvalidateEvent())));
    m_invalidated = true;
}

void OQWindowMailbox::OnInvalidated()
{
    const std::lock_guard guard(m_lock);
    m_invalidated = false;
}

int OQWindowMailbox::MessageEvent()
{
    static const int number = QEvent::registerEventType();
    return number;
}

int OQWindowMailbox::InvalidateEvent()
{
    static const int number = QEvent::registerEventType();
    return number;
}
