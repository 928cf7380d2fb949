#include "platform/ConnectionBreaker.h"

#include <sys/socket.h>

namespace pxvis {

void ConnectionBreaker::Watch(int socket)
{
    const std::lock_guard guard(m_lock);
    m_socket = socket;
    if (m_isBroken)
        shutdown(m_socket, SHUT_RDWR);
}

void ConnectionBreaker::Forget()
{
    const std::lock_guard guard(m_lock);
    m_socket = -1;
}

void ConnectionBreaker::Break()
{
    const std::lock_guard guard(m_lock);
    m_isBroken = true;
    if (m_socket >= 0)
        shutdown(m_socket, SHUT_RDWR);
}

bool ConnectionBreaker::IsBroken() const
{
    const std::lock_guard guard(m_lock);
    return m_isBroken;
}

}
