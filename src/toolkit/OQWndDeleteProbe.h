#pragma once

#include "toolkit/IOQWndDeleteProbe.h"
#include "toolkit/OQCoreWnd.h"

// Tells, behind a call that may have deleted a window, whether it did. A local of the window's
// thread.
class OQWndDeleteProbe final : public IOQWndDeleteProbe
{
public:
    explicit OQWndDeleteProbe(OQCoreWnd& wnd)
        : m_wnd(&wnd)
    {
        wnd.AddDeleteProbe(this);
    }

    ~OQWndDeleteProbe()
    {
        if (m_wnd)
            m_wnd->RemoveDeleteProbe(this);
    }

    OQWndDeleteProbe(const OQWndDeleteProbe&) = delete;
    OQWndDeleteProbe& operator=(const OQWndDeleteProbe&) = delete;

    bool IsDeleted() const { return m_wnd == nullptr; }

    void OnWndDeleted(OQCoreWnd*) override { m_wnd = nullptr; }

private:
    OQCoreWnd* m_wnd;
};
