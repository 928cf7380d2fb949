#pragma once

#include <cstdint>
#include <string>
#include <xcb/xcb.h>

// Another program that a user drags files out of (XDND, version 5).
class DragSource
{
public:
    DragSource(const std::string& display, std::string uriList);
    ~DragSource();
    DragSource(const DragSource&) = delete;
    DragSource& operator=(const DragSource&) = delete;

    // Enters the window, moves to that place of the screen and lets go. True if the window took it.
    bool DropOn(xcb_window_t target, int x, int y);

private:
    xcb_atom_t Atom(const char* name) const;
    void Send(const char* type, uint32_t one, uint32_t two, uint32_t three, uint32_t four) const;
    // Serves the window's wishes until it sends that; its second number, or none in time: 0.
    uint32_t WaitFor(const char* type);
    void Answer(const xcb_selection_request_event_t& request) const;

    xcb_connection_t* m_connection;
    xcb_window_t m_window = 0;
    xcb_window_t m_target = 0;
    std::string m_uriList;
};
