#pragma once

#include <mutex>

namespace pxvis {

// Lets one thread end another one's waiting for a server, by shutting down the socket that the
// other one waits on; every call on that connection fails from then on. Any thread.
class ConnectionBreaker
{
public:
    // The socket to shut down, from now until Forget, which comes before it is closed. If Break was
    // called already, it is shut down at once.
    void Watch(int socket);
    void Forget();

    void Break();
    bool IsBroken() const;

private:
    mutable std::mutex m_lock;
    int m_socket = -1; // below 0: none
    bool m_isBroken = false;
};

}
