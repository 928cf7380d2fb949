#pragma once

#include "Plugins/Visualization/HostTesting.h"
#include "ScreenPixels.h"
#include "TestFolder.h"
#include "TestVariable.h"
#include "XvfbDisplay.h"

#include <functional>
#include <memory>
#include <string>
#include <xcb/xcb.h>

// A player as the library meets it: an X client with a window, no Qt, a home for what the user
// has, which begins empty, and the library loaded from its file.
class PlayerWindow
{
public:
    PlayerWindow(uint16_t width, uint16_t height);
    ~PlayerWindow();
    PlayerWindow(const PlayerWindow&) = delete;
    PlayerWindow& operator=(const PlayerWindow&) = delete;

    // Before Open: a script of the user's, "Folder/Name.pxv", whose pieces are given, and a setting
    // of the visualization.
    void AddScript(const std::string& name, const std::string& pieces);
    void Set(const std::string& name, const std::string& value);

    // Makes the visualization and its window; the window's number, or 0.
    uintptr_t Open();

    // Lets the library work for so long, or until it is so; false if it never was.
    void Run(int milliseconds);
    bool RunUntil(const std::function<bool()>& isSo, int milliseconds = 30000);

    // What the player's window shows, 0x00RRGGBB; its middle.
    ScreenPixels Pixels() const;
    uint32_t Middle() const;

    void Resize(uint16_t width, uint16_t height);
    // Something else lies over the window for a moment.
    void CoverAndUncover();
    void DestroyWindow();

    xcb_window_t GetWindow() const { return m_window; }

    TestHost host;
    std::unique_ptr<IOQVisualization> visualization;

private:
    const TestFolder& m_home;
    std::string m_settings;
    xcb_connection_t* m_connection = nullptr;
    xcb_window_t m_window = 0;
};

// The server of all tests of this program.
XvfbDisplay& TestDisplay();

// A piece that fills a rectangle, in fractions, with a colour.
std::string FlushPiece(const std::string& color, const std::string& rectangle = "0;0;1;1");
