#include "WindowTesting.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>

namespace {

constexpr int ProgramSeconds = 20;

using Clock = std::chrono::steady_clock;

void Sleep(int milliseconds)
{
    const timespec time { milliseconds / 1000, milliseconds % 1000 * 1000000L };
    nanosleep(&time, nullptr);
}

}

PlainHost::PlainHost(int width, int height, uint32_t color)
    : m_connection(xcb_connect(nullptr, nullptr))
{
    REQUIRE(xcb_connection_has_error(m_connection) == 0);
    const xcb_screen_t* const screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    m_window = MakeChild(screen->root, 100, 50, width, height, color);
}

PlainHost::~PlainHost()
{
    xcb_disconnect(m_connection);
}

uint32_t PlainHost::MakeChild(uint32_t parent, int x, int y, int width, int height, uint32_t color)
{
    const uint32_t window = xcb_generate_id(m_connection);
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, parent, static_cast<int16_t>(x),
        static_cast<int16_t>(y), static_cast<uint16_t>(width), static_cast<uint16_t>(height), 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL, &color);
    xcb_map_window(m_connection, window);
    Sync();
    return window;
}

void PlainHost::Configure(int x, int y, int width, int height)
{
    const uint32_t values[] = { uint32_t(x), uint32_t(y), uint32_t(width), uint32_t(height) };
    xcb_configure_window(m_connection, m_window,
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH
            | XCB_CONFIG_WINDOW_HEIGHT,
        values);
    Sync();
}

void PlainHost::Show(bool show)
{
    if (show)
        xcb_map_window(m_connection, m_window);
    else
        xcb_unmap_window(m_connection, m_window);
    Sync();
}

void PlainHost::DestroyWindow(uint32_t window)
{
    xcb_destroy_window(m_connection, window);
    Sync();
}

xcb_atom_t PlainHost::FindAtom(std::string_view name)
{
    xcb_intern_atom_reply_t* const reply = xcb_intern_atom_reply(m_connection,
        xcb_intern_atom(m_connection, 0, static_cast<uint16_t>(name.size()), name.data()), nullptr);
    REQUIRE(reply);
    const xcb_atom_t atom = reply->atom;
    free(reply);
    return atom;
}

bool PlainHost::IsManaged()
{
    return !GetTextProperty(m_window, FindAtom("WM_STATE")).empty();
}

void PlainHost::SetHidden(bool hidden)
{
    const xcb_atom_t state = FindAtom("_NET_WM_STATE_HIDDEN");
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, FindAtom("_NET_WM_STATE"),
        XCB_ATOM_ATOM, 32, hidden ? 1 : 0, &state);
    Sync();
}

std::string PlainHost::GetTextProperty(uint32_t window, xcb_atom_t property)
{
    xcb_get_property_reply_t* const reply = xcb_get_property_reply(m_connection,
        xcb_get_property(m_connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 256),
        nullptr);
    REQUIRE(reply);
    const std::string text(static_cast<const char*>(xcb_get_property_value(reply)),
        size_t(xcb_get_property_value_length(reply)));
    free(reply);
    return text;
}

void PlainHost::Sync()
{
    free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

int TestWnd::CountMouse(OQMouseAction action) const
{
    return static_cast<int>(std::count_if(
        mouse.begin(), mouse.end(), [&](const OQMouseEvent& e) { return e.action == action; }));
}

bool PumpUntil(const std::function<bool()>& condition, int milliseconds)
{
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    do {
        OQToolkit::Get().ProcessEvents(5);
        if (condition())
            return true;
        Sleep(2);
    } while (Clock::now() < end);
    return false;
}

void PumpFor(int milliseconds)
{
    PumpUntil([] { return false; }, milliseconds);
}

bool RunProgram(const std::vector<std::string>& command)
{
    return ChildProcess(command).Wait(ProgramSeconds, [] { PumpFor(1); }) == 0;
}
