#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <mutex>

namespace pxvis::player {

// Has things done on the thread that made it, by its event loop, for threads that may outlive who
// asked for it.
class Mailbox
{
public:
    // What waits beyond this is lost: a file's author decides how many messages it makes.
    static constexpr int MostWaiting = 4096;

    Mailbox();
    ~Mailbox(); // on any thread, once it is closed

    void Post(std::function<void()> letter); // any thread
    void Close(); // on its own thread; what has not been done never is

private:
    std::mutex m_mutex;
    std::unique_ptr<QObject> m_receiver; // null: closed
    int m_waiting = 0;
};

}
