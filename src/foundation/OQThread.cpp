#include "foundation/OQThread.h"

#include "foundation/OQLog.h"

OQThread::~OQThread()
{
    OQThread::Stop();
}

bool OQThread::Start(bool force)
{
    if (IsRunning() && !force)
        return true;
    Stop();
    Cancel(false);
    if (!OnBeforeStart() || !StartThread())
        return false;
    ++m_startCount;
    return true;
}

uint8_t OQThread::Stop()
{
    if (m_startCount < 1)
        return 1;
    Cancel(true);
    Join();
    return m_result.exchange(0);
}

bool OQThread::StartThread()
{
    m_running = true;
    const int error
        = m_thread.Start([](void* self) { static_cast<OQThread*>(self)->RunGuarded(); }, this);
    if (error == 0)
        return true;
    m_running = false;
    OQLog(OQLogError, u"OQThread::StartThread", u"Error starting thread, errno=%d", { error });
    return false;
}

// Nobody above could catch what Run throws.
void OQThread::RunGuarded() noexcept
{
    try {
        m_result = Run();
    } catch (...) {
        m_result = 0;
        OQLog(OQLogError, u"OQThread::Run", u"The thread ended by an exception");
    }
    m_running = false;
}
