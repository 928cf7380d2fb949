#include "apps/player/sound/Mailbox.h"

#include <QMetaObject>

#include <utility>

namespace pxvis::player {

Mailbox::Mailbox()
    : m_receiver(std::make_unique<QObject>())
{
}

Mailbox::~Mailbox() = default;

void Mailbox::Post(std::function<void()> letter)
{
    const std::lock_guard lock(m_mutex);
    if (!m_receiver || m_waiting >= MostWaiting)
        return;
    ++m_waiting;
    const auto open = [this, letter = std::move(letter)] {
        {
            const std::lock_guard guard(m_mutex);
            --m_waiting;
        }
        letter(); // may close and destroy this
    };
    QMetaObject::invokeMethod(m_receiver.get(), open, Qt::QueuedConnection);
}

void Mailbox::Close()
{
    std::unique_ptr<QObject> receiver;
    {
        const std::lock_guard lock(m_mutex);
        receiver = std::move(m_receiver);
    }
}

}
