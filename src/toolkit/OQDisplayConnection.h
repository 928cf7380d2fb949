#pragma once

#include "foundation/OQArray.h"
#include "foundation/OQGeometry.h"
#include "foundation/OQList.h"

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <xcb/xcb.h>

// Learns what becomes of a window that someone else made.
class IOQParentEvents
{
public:
    virtual void OnParentSize(const OQSize& size) = 0;
    virtual void OnParentDestroyed() = 0; // it is watched no more

protected:
    ~IOQParentEvents() = default;
};

// A connection of our own to the X server, beside Qt's and the host's: event masks are per
// connection, so what is watched here disturbs nobody, and looking whether the server is still
// there costs nothing. One thread. Questions about a window that is gone give 0, false or what is
// empty.
class OQDisplayConnection
{
public:
    // To the display that DISPLAY names; null if there is none. `wake` is called when there is
    // something to dispatch that the descriptor doesn't show.
    static std::unique_ptr<OQDisplayConnection> Open(std::function<void()> wake);
    ~OQDisplayConnection();
    OQDisplayConnection(const OQDisplayConnection&) = delete;
    OQDisplayConnection& operator=(const OQDisplayConnection&) = delete;

    // Readable when something came from the server.
    int GetDescriptor() const;

    // Tells the listeners what came. False once the server is gone.
    bool Dispatch();

    // Whether windows can be made in it, and its size.
    bool GetParentSize(uint32_t window, OQSize& size);
    bool GetRect(uint32_t window, OQRect& rect); // in its parent
    bool IsViewable(uint32_t window); // it and its ancestors are mapped
    bool IsMinimised(uint32_t window); // by what the window manager notes at its top-level
    uint32_t FindTopLevel(uint32_t window); // the window that the window manager knows

    // The listener is not owned. False if there is no such window.
    bool Watch(uint32_t window, IOQParentEvents* listener);
    void Unwatch(IOQParentEvents* listener);

    uint32_t GetInputFocus();
    void SetInputFocus(uint32_t window);

private:
    struct Freed
    {
        void operator()(void* reply) const { free(reply); }
    };

    template <class Reply>
    using Owned = std::unique_ptr<Reply, Freed>;
    using Event = Owned<xcb_generic_event_t>;

    struct Watched
    {
        uint32_t window = 0;
        IOQParentEvents* listener = nullptr;
    };

    OQDisplayConnection(xcb_connection_t* connection, std::function<void()> wake);

    template <class Reply, class Cookie>
    auto Ask(Reply* (*reply)(xcb_connection_t*, Cookie, xcb_generic_error_t**), Cookie cookie);
    void Tell(const xcb_generic_event_t& event);
    uint32_t FindAtom(const char* name);

    xcb_connection_t* m_connection;
    std::function<void()> m_wake;
    OQList<Event> m_events; // came, and not dispatched yet
    OQArray<Watched> m_watched;
    uint32_t m_windowState = 0; // WM_STATE, an atom
    uint32_t m_netWindowState = 0; // _NET_WM_STATE
    uint32_t m_netHidden = 0; // _NET_WM_STATE_HIDDEN
};
