#pragma once

#include "foundation/OQMap.h"
#include "toolkit/OQCallbackWnd.h"

#include <memory>

class OQWindowMailbox;
class OQWindowWidget;
class QEvent;

// A window of the system's in a window that a host hands over: an X11 window, and behind it a
// widget. It belongs to the thread that makes it, where all operations are called and all events
// come, but for Invalidate and Post, which any thread may call while the object lives. Coordinates
// are device pixels. The parent may go first: OnTerminate comes, and there is no window from then
// on. Without a window every operation does nothing and gives false, 0 or what is empty.
class OQBasicWnd : public OQCallbackWnd
{
public:
    OQBasicWnd();
    // A wrapper round a window that someone else made and keeps: kind 5. It has no events.
    explicit OQBasicWnd(uintptr_t handle);
    // Calls Destroy; a class that overrides OnTerminate must do so itself in its destructor, since
    // here only this class is left of it.
    ~OQBasicWnd() override;

    // Makes the window as a child of the X11 window `parent`, as large as that and following its
    // size, and shows it. The class name is its WM_CLASS. False, and the reason in the log, where
    // there is no such parent, no display to be had, or a window already.
    bool CreateChild(uintptr_t parent, const OQChar* className);
    void Destroy();

    // X11 window id. It changes when a host of the same toolkit makes its windows anew.
    uintptr_t GetHandle() const;
    // Whether any of it can be seen as far as its own and its ancestors' state goes: all shown,
    // none minimised. Others may cover it.
    bool IsVisible() const;
    OQRect GetRect() const override;
    OQSize GetClientSize() const;
    OQRect GetClientRect() const;

    // The title. It is kept without a window as well.
    void SetText(const OQString& text);

    const OQString& GetText() const { return m_text; }

    void Enable(bool enable); // whether mouse and keyboard reach it
    // From now on mouse and keys are as if the window weren't there: they reach the parent.
    void LetInputThrough();
    void SetFocus();
    void SetCapture();
    void ReleaseCapture();

    // Any thread. Asks for the whole window to be painted; several requests before the paint are
    // one.
    void Invalidate();
    // Paints now what was asked for.
    void Update();

    // Any thread. OnMessage comes in the order of the posts.
    bool Post(uint32_t message, intptr_t p1 = 0, intptr_t p2 = 0);
    // OnMessage is called before this returns.
    void Send(uint32_t message, intptr_t p1 = 0, intptr_t p2 = 0);

    // OnTimer comes every so many milliseconds, at least 1, until KillTimer. Setting it anew
    // restarts it. Timers end with the window.
    bool SetTimer(int32_t id, int32_t milliseconds);
    bool KillTimer(int32_t id);

protected:
    friend class OQMenuWnd;
    friend class OQWindowWidget;
    friend class OQToolkit;

    // All of the widget's events go through here first. True if there is nothing left to do with
    // it. The object may be gone behind it.
    virtual bool OnPlatformEvent(QEvent& event);
    virtual void DispatchMessage(uint32_t message, intptr_t p1, intptr_t p2);

    OQWindowWidget* GetWidget() const { return m_widget; }

    // Our number of the platform's timer. False for one that isn't ours.
    bool FindTimer(int platformTimer, int32_t& id) const;
    void TellSize();

private:
    // The platform's window is there no more, or what is behind it may not be used any more.
    void OnWindowLost(bool widgetIsGone);
    void Terminate();

    OQWindowWidget* m_widget = nullptr; // owned, unless a parent of the same toolkit deletes it
    std::shared_ptr<OQWindowMailbox> m_mailbox;
    uintptr_t m_wrapped = 0;
    OQString m_text;
    OQMap<int32_t, int> m_timers; // our number, the platform's
    OQSize m_toldSize { -1, -1 };
    bool m_ending = false;
    mutable bool m_minimised = false;
    mutable int64_t m_minimisedReadAt = 0; // monotonic nanoseconds; 0: never
};
