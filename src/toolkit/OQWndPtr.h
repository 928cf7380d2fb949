#pragma once

#include "toolkit/IOQWndDeleteProbe.h"
#include "toolkit/OQBasicWnd.h"

#include <cstdint>

// A safe pointer to a window: empty; pointing at a window of the toolkit, and cleared when that
// goes; or owning a wrapper round a platform window that the toolkit didn't make. The window's
// thread only.
class OQWndPtr : public IOQWndDeleteProbe
{
public:
    OQWndPtr() = default;
    OQWndPtr(OQCoreWnd* wnd); // not owned
    explicit OQWndPtr(uintptr_t handle); // 0: empty
    OQWndPtr(const OQWndPtr& other);
    OQWndPtr& operator=(const OQWndPtr& other);
    OQWndPtr& operator=(OQCoreWnd* wnd);
    ~OQWndPtr();

    OQCoreWnd* Get() const { return m_wnd; }

    OQCoreWnd* operator->() const { return m_wnd; }

    explicit operator bool() const { return m_wnd != nullptr; }

    void Clear();

    void OnWndDeleted(OQCoreWnd* wnd) override;

private:
    void Point(OQCoreWnd* wnd);

    OQCoreWnd* m_wnd = nullptr;
    bool m_ownsWrapper = false;
};

// The same for windows of one class.
template <class T>
class OQTypedWndPtr : public OQWndPtr
{
public:
    OQTypedWndPtr() = default;

    OQTypedWndPtr(T* wnd)
        : OQWndPtr(wnd)
    {
    }

    OQTypedWndPtr& operator=(T* wnd)
    {
        OQWndPtr::operator=(wnd);
        return *this;
    }

    T* Get() const { return static_cast<T*>(OQWndPtr::Get()); }

    T* operator->() const { return Get(); }
};
