#include "apps/player/main/DragSource.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int AnswerSeconds = 30;

}

DragSource::DragSource(const std::string& display, std::string uriList)
    : m_connection(xcb_connect(display.c_str(), nullptr))
    , m_uriList(std::move(uriList))
{
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
    m_window = xcb_generate_id(m_connection);
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, root, -10, -10, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(m_connection, m_window, Atom("XdndSelection"), XCB_CURRENT_TIME);
}

DragSource::~DragSource()
{
    xcb_disconnect(m_connection);
}

bool DragSource::DropOn(xcb_window_t target, int x, int y)
{
    constexpr uint32_t version = 5U << 24;
    constexpr uint32_t isTaken = 1;
    m_target = target;
    const auto place = static_cast<uint32_t>((x << 16) | y);
    const xcb_atom_t copy = Atom("XdndActionCopy");
    Send("XdndEnter", version, Atom("text/uri-list"), 0, 0);
    Send("XdndPosition", 0, place, XCB_CURRENT_TIME, copy);
    if (!(WaitFor("XdndStatus") & isTaken))
        return false;
    Send("XdndDrop", 0, XCB_CURRENT_TIME, 0, 0);
    return WaitFor("XdndFinished") & isTaken;
}

xcb_atom_t DragSource::Atom(const char* name) const
{
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(m_connection,
        xcb_intern_atom(m_connection, 0, static_cast<uint16_t>(std::strlen(name)), name), nullptr);
    const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t { XCB_ATOM_NONE };
    free(reply);
    return atom;
}

void DragSource::Send(
    const char* type, uint32_t one, uint32_t two, uint32_t three, uint32_t four) const
{
    xcb_client_message_event_t message {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = m_target;
    message.type = Atom(type);
    const uint32_t numbers[] = { m_window, one, two, three, four };
    std::memcpy(message.data.data32, numbers, sizeof numbers);
    xcb_send_event(m_connection, 0, m_target, 0, reinterpret_cast<const char*>(&message));
    xcb_flush(m_connection);
}

uint32_t DragSource::WaitFor(const char* type)
{
    const xcb_atom_t awaited = Atom(type);
    const auto end = Clock::now() + std::chrono::seconds(AnswerSeconds);
    while (Clock::now() < end) {
        xcb_generic_event_t* event = xcb_poll_for_event(m_connection);
        if (!event) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            continue;
        }
        uint32_t answer = 0;
        bool isIt = false;
        switch (event->response_type & 0x7F) {
        case XCB_SELECTION_REQUEST:
            Answer(*reinterpret_cast<const xcb_selection_request_event_t*>(event));
            break;
        case XCB_CLIENT_MESSAGE: {
            const auto& message = *reinterpret_cast<const xcb_client_message_event_t*>(event);
            isIt = message.type == awaited;
            answer = message.data.data32[1];
            break;
        }
        default:
            break;
        }
        free(event);
        if (isIt)
            return answer;
    }
    return 0;
}

void DragSource::Answer(const xcb_selection_request_event_t& request) const
{
    constexpr uint8_t bits = 8;
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
        request.target, bits, static_cast<uint32_t>(m_uriList.size()), m_uriList.data());
    xcb_selection_notify_event_t done {};
    done.response_type = XCB_SELECTION_NOTIFY;
    done.time = request.time;
    done.requestor = request.requestor;
    done.selection = request.selection;
    done.target = request.target;
    done.property = request.property;
    xcb_send_event(m_connection, 0, request.requestor, 0, reinterpret_cast<const char*>(&done));
    xcb_flush(m_connection);
}
