#pragma once

#include "ChildProcess.h"
#include "ScreenPixels.h"
#include "XvfbDisplay.h"
#include "toolkit/IOQPaint.h"
#include "toolkit/OQSystemWnd.h"
#include "toolkit/OQToolkit.h"

#include <doctest/doctest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>
#include <xcb/xcb.h>

// A top-level window of a program that has nothing to do with Qt, on a connection of its own.
class PlainHost
{
public:
    explicit PlainHost(int width = 300, int height = 200, uint32_t color = 0x404040);
    ~PlainHost();
    PlainHost(const PlainHost&) = delete;
    PlainHost& operator=(const PlainHost&) = delete;

    uint32_t GetWindow() const { return m_window; }

    xcb_connection_t* GetConnection() const { return m_connection; }

    // A window over `parent`, which hears of no input.
    uint32_t MakeChild(uint32_t parent, int x, int y, int width, int height, uint32_t color);
    void Configure(int x, int y, int width, int height);
    void Show(bool show);
    void SetHidden(bool hidden); // by the note of a window manager
    void DestroyWindow(uint32_t window);
    bool IsManaged(); // a window manager took it up
    std::string GetTextProperty(uint32_t window, xcb_atom_t property);

private:
    void Sync();
    xcb_atom_t FindAtom(std::string_view name);

    xcb_connection_t* m_connection;
    uint32_t m_window = 0;
};

// A window that fills itself and counts what it is told.
class TestWnd : public OQSystemWnd
{
public:
    ~TestWnd() override { Destroy(); }

    uint32_t color = 0x2060A0;
    int initialized = 0;
    int terminated = 0;
    int paints = 0;
    std::vector<OQSize> sizes;
    std::vector<int32_t> timers;
    std::vector<uint32_t> messages;
    std::vector<OQMouseEvent> mouse;
    std::vector<OQKeyEvent> keys;
    std::vector<bool> focus;
    std::function<void(const char*)> onEvent; // called last in each, with its name

    void OnInitialize() override
    {
        Tell("Initialize", [&] { ++initialized; });
    }

    void OnTerminate() override
    {
        Tell("Terminate", [&] { ++terminated; });
    }

    void OnSize(const OQSize& client) override
    {
        Tell("Size", [&] { sizes.push_back(client); });
    }

    void OnPaint(IOQPaint& paint) override
    {
        Tell("Paint", [&] {
            ++paints;
            paint.FillRect(GetClientRect(), color);
        });
    }

    void OnTimer(int32_t id) override
    {
        Tell("Timer", [&] { timers.push_back(id); });
    }

    void OnMessage(uint32_t message, intptr_t p1, intptr_t) override
    {
        Tell("Message", [&] { messages.push_back(message + static_cast<uint32_t>(p1)); });
    }

    bool OnMouse(const OQMouseEvent& event) override
    {
        Tell("Mouse", [&] { mouse.push_back(event); });
        return true;
    }

    bool OnKey(const OQKeyEvent& event) override
    {
        Tell("Key", [&] { keys.push_back(event); });
        return true;
    }

    void OnFocus(bool hasFocus) override
    {
        Tell("Focus", [&] { focus.push_back(hasFocus); });
    }

    using OQSystemWnd::RegisterMessage;

    bool HasFocus() const { return !focus.empty() && focus.back(); }

    int CountMouse(OQMouseAction action) const;

private:
    template <class Note>
    void Tell(const char* name, Note note)
    {
        note();
        if (const auto call = onEvent) // a copy: it may delete this
            call(name);
    }
};

// Does what a host without a loop of Qt's does, until the condition holds or some seconds passed.
bool PumpUntil(const std::function<bool()>& condition, int milliseconds = 5000);
void PumpFor(int milliseconds);

// A program such as xdotool, run to its end while windows go on. True if it succeeded.
bool RunProgram(const std::vector<std::string>& command);
