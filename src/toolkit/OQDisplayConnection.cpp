#include "toolkit/OQDisplayConnection.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

// A tree of windows is a few deep; strangers may make it deeper.
constexpr int MostAncestors = 64;

}

std::unique_ptr<OQDisplayConnection> OQDisplayConnection::Open(std::function<void()> wake)
{
    xcb_connection_t* const connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return nullptr;
    }
    return std::unique_ptr<OQDisplayConnection>(
        new OQDisplayConnection(connection, std::move(wake)));
}

OQDisplayConnection::OQDisplayConnection(xcb_connection_t* connection, std::function<void()> wake)
    : m_connection(connection)
    , m_wake(std::move(wake))
    , m_windowState(FindAtom("WM_STATE"))
    , m_netWindowState(FindAtom("_NET_WM_STATE"))
    , m_netHidden(FindAtom("_NET_WM_STATE_HIDDEN"))
{
}

OQDisplayConnection::~OQDisplayConnection()
{
    xcb_disconnect(m_connection);
}

int OQDisplayConnection::GetDescriptor() const
{
    return xcb_get_file_descriptor(m_connection);
}

bool OQDisplayConnection::Dispatch()
{
    while (xcb_generic_event_t* event = xcb_poll_for_event(m_connection))
        m_events.AddLast(Event(event));
    while (!m_events.IsEmpty()) { // a listener may come here again
        const Event event = std::move(m_events.First()->value);
        m_events.Remove(m_events.First());
        Tell(*event);
    }
    return xcb_connection_has_error(m_connection) == 0;
}

void OQDisplayConnection::Tell(const xcb_generic_event_t& event)
{
    const int type = event.response_type & 0x7F; // without the mark of events that a client sent
    const auto& configured = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
    const auto& destroyed = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
    // A client that starts anew gets the numbers of its windows anew: what tells of the end of an
    // older window of the number says nothing of the one that is watched.
    OQRect rect;
    if (type == XCB_DESTROY_NOTIFY && GetRect(destroyed.window, rect))
        return;
    // A listener may end or begin to watch.
    for (int i = m_watched.GetCount() - 1; i >= 0; i = std::min(i, m_watched.GetCount()) - 1) {
        const Watched watched = m_watched[i];
        if (type == XCB_CONFIGURE_NOTIFY && watched.window == configured.window) {
            watched.listener->OnParentSize({ configured.width, configured.height });
        } else if (type == XCB_DESTROY_NOTIFY && watched.window == destroyed.window) {
            m_watched.Remove(i);
            watched.listener->OnParentDestroyed();
        }
    }
}

// The answer to a question, null where the server has none. Events that came before it are kept,
// and whoever dispatches is told, since the descriptor shows them no more.
template <class Reply, class Cookie>
auto OQDisplayConnection::Ask(
    Reply* (*reply)(xcb_connection_t*, Cookie, xcb_generic_error_t**), Cookie cookie)
{
    xcb_generic_error_t* failure = nullptr;
    Owned<Reply> answer(reply(m_connection, cookie, &failure));
    const Owned<xcb_generic_error_t> error(failure);
    const bool wasEmpty = m_events.IsEmpty();
    while (xcb_generic_event_t* event = xcb_poll_for_queued_event(m_connection))
        m_events.AddLast(Event(event));
    if (wasEmpty && !m_events.IsEmpty())
        m_wake();
    return answer;
}

bool OQDisplayConnection::GetParentSize(uint32_t window, OQSize& size)
{
    size = {};
    const auto attributes
        = Ask(xcb_get_window_attributes_reply, xcb_get_window_attributes(m_connection, window));
    OQRect rect;
    if (!attributes || attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT
        || !GetRect(window, rect))
        return false;
    size = { rect.Width(), rect.Height() };
    return true;
}

bool OQDisplayConnection::GetRect(uint32_t window, OQRect& rect)
{
    rect = {};
    const auto geometry = Ask(xcb_get_geometry_reply, xcb_get_geometry(m_connection, window));
    if (!geometry)
        return false;
    rect = { geometry->x, geometry->y, geometry->x + geometry->width,
        geometry->y + geometry->height };
    return true;
}

bool OQDisplayConnection::IsViewable(uint32_t window)
{
    const auto attributes
        = Ask(xcb_get_window_attributes_reply, xcb_get_window_attributes(m_connection, window));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool OQDisplayConnection::IsMinimised(uint32_t window)
{
    const uint32_t top = FindTopLevel(window);
    const auto states = Ask(xcb_get_property_reply,
        xcb_get_property(m_connection, 0, top, m_netWindowState, XCB_ATOM_ATOM, 0, 64));
    if (!states || states->format != 32)
        return false;
    const auto* const first = static_cast<const xcb_atom_t*>(xcb_get_property_value(states.get()));
    const xcb_atom_t* const end = first + states->value_len;
    return std::find(first, end, m_netHidden) != end;
}

uint32_t OQDisplayConnection::FindTopLevel(uint32_t window)
{
    uint32_t highest = window;
    for (int i = 0; i < MostAncestors; ++i) {
        const auto state = Ask(xcb_get_property_reply,
            xcb_get_property(m_connection, 0, window, m_windowState, m_windowState, 0, 1));
        const auto tree = Ask(xcb_query_tree_reply, xcb_query_tree(m_connection, window));
        if (state && state->type == m_windowState)
            return window;
        highest = window;
        if (!tree || tree->parent == 0 || tree->parent == tree->root)
            break;
        window = tree->parent;
    }
    return highest;
}

bool OQDisplayConnection::Watch(uint32_t window, IOQParentEvents* listener)
{
    const uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection, window, XCB_CW_EVENT_MASK, &mask);
    const auto attributes
        = Ask(xcb_get_window_attributes_reply, xcb_get_window_attributes(m_connection, window));
    if (!attributes)
        return false;
    m_watched.Add({ window, listener });
    return true;
}

// What else may be watching the same window keeps its events; those of others are passed over.
void OQDisplayConnection::Unwatch(IOQParentEvents* listener)
{
    for (int i = m_watched.GetCount() - 1; i >= 0; --i) {
        if (m_watched[i].listener == listener)
            m_watched.Remove(i);
    }
}

uint32_t OQDisplayConnection::GetInputFocus()
{
    const auto focus = Ask(xcb_get_input_focus_reply, xcb_get_input_focus(m_connection));
    return focus ? focus->focus : 0;
}

// An error, where the window can't have it, comes as an event that means nothing to anyone.
void OQDisplayConnection::SetInputFocus(uint32_t window)
{
    xcb_set_input_focus(m_connection, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    xcb_flush(m_connection);
}

uint32_t OQDisplayConnection::FindAtom(const char* name)
{
    const auto atom = Ask(xcb_intern_atom_reply,
        xcb_intern_atom(m_connection, 0, static_cast<uint16_t>(std::strlen(name)), name));
    return atom ? atom->atom : 0;
}
