#include "toolkit/OQCallbackWnd.h"

#include "toolkit/OQWndDeleteProbe.h"

void OQCallbackWnd::RemoveCallbacks(const void* target)
{
    for (int i = m_callbacks.GetCount() - 1; i >= 0; --i) {
        if (m_callbacks[i]->target == target)
            m_callbacks.Remove(i);
    }
}

bool OQCallbackWnd::Call(int32_t event)
{
    const OQWndDeleteProbe probe(*this);
    // The list may change with each call.
    for (int i = 0; i < m_callbacks.GetCount(); ++i) {
        if (m_callbacks[i]->event != event)
            continue;
        const std::function<void()> operation = m_callbacks[i]->operation;
        operation();
        if (probe.IsDeleted())
            return false;
    }
    return true;
}

void OQCallbackWnd::SetCallback(const void* target, int32_t event, std::function<void()> operation)
{
    for (Callback* callback : m_callbacks) {
        if (callback->target == target && callback->event == event) {
            callback->operation = std::move(operation);
            return;
        }
    }
    m_callbacks.Add(new Callback { target, event, std::move(operation) });
}
