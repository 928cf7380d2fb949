#include "toolkit/OQWndPtr.h"

OQWndPtr::OQWndPtr(OQCoreWnd* wnd)
{
    Point(wnd);
}

OQWndPtr::OQWndPtr(uintptr_t handle)
{
    if (handle == 0)
        return;
    m_wnd = new OQBasicWnd(handle);
    m_ownsWrapper = true;
}

OQWndPtr::OQWndPtr(const OQWndPtr& other)
{
    *this = other;
}

OQWndPtr& OQWndPtr::operator=(const OQWndPtr& other)
{
    if (this == &other)
        return *this;
    Clear();
    if (other.m_ownsWrapper) {
        m_wnd = new OQBasicWnd(static_cast<OQBasicWnd*>(other.m_wnd)->GetHandle());
        m_ownsWrapper = true;
    } else {
        Point(other.m_wnd);
    }
    return *this;
}

OQWndPtr& OQWndPtr::operator=(OQCoreWnd* wnd)
{
    if (wnd != m_wnd) {
        Clear();
        Point(wnd);
    }
    return *this;
}

OQWndPtr::~OQWndPtr()
{
    Clear();
}

void OQWndPtr::Clear()
{
    if (m_ownsWrapper)
        delete m_wnd;
    else if (m_wnd)
        m_wnd->RemoveDeleteProbe(this);
    m_wnd = nullptr;
    m_ownsWrapper = false;
}

void OQWndPtr::OnWndDeleted(OQCoreWnd*)
{
    m_wnd = nullptr;
}

void OQWndPtr::Point(OQCoreWnd* wnd)
{
    if (wnd)
        wnd->AddDeleteProbe(this);
    m_wnd = wnd;
}
