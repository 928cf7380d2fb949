#include "platform/PresenterWindow.h"

#include "platform/ConnectionBreaker.h"
#include "platform/XcbReply.h"

#include <algorithm>
#include <utility>
#include <xcb/xcb.h>

namespace pxvis {

std::unique_ptr<PresenterWindow> PresenterWindow::Connect(
    uintptr_t parent, ConnectionBreaker& breaker)
{
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr); // never null
    std::unique_ptr<PresenterWindow> window;
    try {
        window.reset(new PresenterWindow(connection, breaker));
    } catch (...) {
        xcb_disconnect(connection);
        throw;
    }
    if (xcb_connection_has_error(connection) || !window->FindParent(parent))
        return nullptr;
    return window;
}

PresenterWindow::PresenterWindow(xcb_connection_t* connection, ConnectionBreaker& breaker)
    : m_connection(connection)
    , m_breaker(breaker)
{
    if (!xcb_connection_has_error(connection))
        m_breaker.Watch(xcb_get_file_descriptor(connection));
}

// The server destroys what the connection made.
PresenterWindow::~PresenterWindow()
{
    m_breaker.Forget();
    xcb_disconnect(m_connection);
}

bool PresenterWindow::FindParent(uintptr_t parent)
{
    if (parent == 0 || parent > UINT32_MAX)
        return false;
    m_parent = static_cast<uint32_t>(parent);
    const auto geometryCookie = xcb_get_geometry(m_connection, m_parent);
    const auto attributesCookie = xcb_get_window_attributes(m_connection, m_parent);
    const XcbReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(m_connection, geometryCookie, nullptr));
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(m_connection, attributesCookie, nullptr));
    if (!geometry || !attributes || attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT)
        return false;
    FindVisuals(geometry->root, attributes->visual);
    return !m_visuals.empty();
}

void PresenterWindow::FindVisuals(uint32_t root, uint32_t parentVisual)
{
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection));
    while (screens.rem > 0 && screens.data->root != root) {
        xcb_screen_next(&screens);
        ++m_screenNumber;
    }
    if (screens.rem < 1)
        return;
    for (auto depths = xcb_screen_allowed_depths_iterator(screens.data); depths.rem > 0;
         xcb_depth_next(&depths)) {
        for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem > 0;
             xcb_visualtype_next(&visuals)) {
            const xcb_visualtype_t& visual = *visuals.data;
            if (visual._class == XCB_VISUAL_CLASS_TRUE_COLOR)
                m_visuals.push_back({ visual.visual_id, depths.data->depth, visual.red_mask,
                    visual.green_mask, visual.blue_mask });
        }
    }
    const auto rank = [&](const Visual& visual) {
        return visual.id == parentVisual ? 0 : visual.id == screens.data->root_visual ? 1 : 2;
    };
    std::stable_sort(m_visuals.begin(), m_visuals.end(),
        [&](const Visual& a, const Visual& b) { return rank(a) < rank(b); });
}

bool PresenterWindow::Create(const Visual& visual)
{
    m_colormap = xcb_generate_id(m_connection);
    m_window = xcb_generate_id(m_connection);
    // Another visual than the parent's needs a border colour and a colour map of its own. With no
    // background the server paints nothing when the size changes.
    xcb_create_window_value_list_t values {};
    values.background_pixmap = XCB_BACK_PIXMAP_NONE;
    values.border_pixel = 0;
    values.event_mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_EXPOSURE;
    values.colormap = m_colormap;
    const xcb_void_cookie_t map = xcb_create_colormap_checked(
        m_connection, XCB_COLORMAP_ALLOC_NONE, m_colormap, m_parent, visual.id);
    const xcb_void_cookie_t window = xcb_create_window_aux_checked(m_connection, visual.depth,
        m_window, m_parent, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual.id,
        XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP, &values);
    const XcbReply<xcb_generic_error_t> mapError(xcb_request_check(m_connection, map));
    const XcbReply<xcb_generic_error_t> windowError(xcb_request_check(m_connection, window));
    return !mapError && !windowError && !xcb_connection_has_error(m_connection);
}

ShowResult PresenterWindow::Cover(int32_t width, int32_t height)
{
    if (width != m_width || height != m_height) {
        const uint32_t sizes[] = { static_cast<uint32_t>(width), static_cast<uint32_t>(height) };
        xcb_configure_window(
            m_connection, m_window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, sizes);
        if (m_width == 0)
            xcb_map_window(m_connection, m_window);
        m_width = width;
        m_height = height;
        // A driver reads the size from the events of the connection: they are here before the
        // answer.
        const XcbReply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(
            m_connection, xcb_get_geometry(m_connection, m_window), nullptr));
    }
    const ShowResult result = Check();
    m_isExposed = false;
    return result;
}

ShowResult PresenterWindow::Check()
{
    while (const XcbReply<xcb_generic_event_t> event { xcb_poll_for_event(m_connection) })
        Notice(event.get());
    if (m_isGone)
        return ShowResult::WindowGone;
    return xcb_connection_has_error(m_connection) ? ShowResult::MethodFailed : ShowResult::Shown;
}

bool PresenterWindow::IsExposed()
{
    return Check() == ShowResult::Shown && std::exchange(m_isExposed, false);
}

ShowResult PresenterWindow::WaitFor(uint8_t type)
{
    xcb_flush(m_connection);
    bool isThere = false;
    while (!isThere) {
        const XcbReply<xcb_generic_event_t> event(xcb_wait_for_event(m_connection));
        if (!event) // the connection is broken
            return ShowResult::MethodFailed;
        Notice(event.get());
        if (m_isGone)
            return ShowResult::WindowGone;
        if (event->response_type == 0)
            return ShowResult::MethodFailed;
        isThere = (event->response_type & 0x7F) == type;
    }
    return ShowResult::Shown;
}

// Errors are told only where somebody waits: a driver on this connection may provoke some and know.
void PresenterWindow::Notice(const void* event)
{
    const auto* destroyed = static_cast<const xcb_destroy_notify_event_t*>(event);
    if ((destroyed->response_type & 0x7F) == XCB_DESTROY_NOTIFY && destroyed->window == m_window)
        m_isGone = true;
    if ((destroyed->response_type & 0x7F) == XCB_EXPOSE)
        m_isExposed = true;
}

}
