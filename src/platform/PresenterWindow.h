#pragma once

#include "platform/PresenterSurface.h"

#include <cstdint>
#include <memory>
#include <vector>

struct xcb_connection_t;

namespace pxvis {

class ConnectionBreaker;

// A window of our own inside another client's one, which it covers, on a connection of our own. It
// asks for no input, so events go to the window beneath. Owned by a surface; the presenter's
// thread.
class PresenterWindow
{
public:
    // A way in which the window could hold colours, as X describes it.
    struct Visual
    {
        uint32_t id;
        uint8_t depth;
        uint32_t red; // masks within a pixel
        uint32_t green;
        uint32_t blue;
    };

    // Connects to the display that DISPLAY names; null if there is none or no such window on it.
    static std::unique_ptr<PresenterWindow> Connect(uintptr_t parent, ConnectionBreaker& breaker);

    ~PresenterWindow();
    PresenterWindow(const PresenterWindow&) = delete;
    PresenterWindow& operator=(const PresenterWindow&) = delete;

    // Not owned; lives as long as this object.
    xcb_connection_t* GetConnection() const { return m_connection; }

    uint32_t GetScreenNumber() const { return m_screenNumber; }

    // Those that show colours directly: the parent's first, the screen's next, then the rest.
    const std::vector<Visual>& GetVisuals() const { return m_visuals; }

    // Makes the window, not yet visible; once. False if the server refuses.
    bool Create(const Visual& visual);

    uint32_t GetId() const { return m_window; } // 0 before Create

    // Makes the window that large and visible. When it returns the server has done so.
    ShowResult Cover(int32_t width, int32_t height);

    // Takes what the server has told since the last time. Other than Shown if the window or the
    // connection is gone.
    ShowResult Check();

    // As PresenterSurface's, since Cover; each loss is told once.
    bool IsExposed();

    // Waits for an event of that type; an error that the server tells is a MethodFailed.
    ShowResult WaitFor(uint8_t type);

private:
    PresenterWindow(xcb_connection_t* connection, ConnectionBreaker& breaker);
    bool FindParent(uintptr_t parent);
    void FindVisuals(uint32_t root, uint32_t parentVisual);
    void Notice(const void* event);

    xcb_connection_t* const m_connection;
    ConnectionBreaker& m_breaker;
    uint32_t m_screenNumber = 0;
    std::vector<Visual> m_visuals;
    uint32_t m_parent = 0;
    uint32_t m_window = 0;
    uint32_t m_colormap = 0;
    int32_t m_width = 0;
    int32_t m_height = 0;
    bool m_isExposed = false;
    bool m_isGone = false;
};

}
