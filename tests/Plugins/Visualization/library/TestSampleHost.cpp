#include "ChildProcess.h"
#include "ScreenPixels.h"
#include "TestFolder.h"
#include "TestVariable.h"
#include "XvfbDisplay.h"

#include <doctest/doctest.h>

#include <chrono>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <xcb/xcb.h>

namespace {

constexpr const char* ocean
    = "<PXV Version=\"1.0\">"
      "<Component GUID=\"36267E6D-70E1-435e-9E2A-428EEA2D3C7E\" Name=\"Flush\">"
      "<Properties><Color>0x1030E0</Color></Properties></Component>"
      "<Component GUID=\"01F7B01F-B355-4152-83D6-DBEB8CE7C8D4\" "
      "Name=\"Oscilloscope\"><Properties><LineEquation>Across Middle"
      "</LineEquation></Properties></Component></PXV>";
constexpr uint32_t blue = 0x1030e0;

bool Until(const std::function<bool()>& isSo)
{
    for (int tries = 0; tries < 1000; ++tries) {
        if (isSo())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

// The host's window on the server's screen, as a user meets it.
class HostWindow
{
public:
    HostWindow()
        : m_connection(xcb_connect(nullptr, nullptr))
    {
    }

    ~HostWindow() { xcb_disconnect(m_connection); }

    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;

    bool Find()
    {
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        xcb_query_tree_reply_t* tree
            = xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, root), nullptr);
        for (int i = 0; i < xcb_query_tree_children_length(tree); ++i) {
            const xcb_window_t child = xcb_query_tree_children(tree)[i];
            xcb_get_geometry_reply_t* geometry = xcb_get_geometry_reply(
                m_connection, xcb_get_geometry(m_connection, child), nullptr);
            if (geometry && geometry->width == 1280 && geometry->height == 720)
                m_window = child;
            free(geometry);
        }
        free(tree);
        return m_window != 0;
    }

    // As a person does it, with the pointer over the picture.
    static void Press(const char* key)
    {
        ChildProcess({ "xdotool", "mousemove", "250", "250", "key", key }).Wait(20);
    }

    void Resize(uint32_t width, uint32_t height)
    {
        const uint32_t size[] = { width, height };
        xcb_configure_window(
            m_connection, m_window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
        xcb_flush(m_connection);
    }

    std::string Title()
    {
        xcb_get_property_reply_t* name = xcb_get_property_reply(m_connection,
            xcb_get_property(m_connection, 0, m_window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 0, 256),
            nullptr);
        const std::string title(static_cast<const char*>(xcb_get_property_value(name)),
            static_cast<size_t>(xcb_get_property_value_length(name)));
        free(name);
        return title;
    }

    ScreenPixels Pixels() const { return ScreenPixels(std::getenv("DISPLAY"), m_window); }

private:
    xcb_connection_t* m_connection;
    xcb_window_t m_window = 0;
};

}

TEST_CASE("The sample host shows a song, changes the mode, follows its size and quits")
{
    const XvfbDisplay display;
    REQUIRE(display.IsRunning());
    const TestFolder home;
    const TestVariable data("XDG_DATA_HOME", home.Path("data").c_str());
    // What the system's libraries keep for good is not the programs' fault.
    const TestVariable leaks("ASAN_OPTIONS", "detect_leaks=0");
    const TestVariable config("XDG_CONFIG_HOME", home.Path("config").c_str());
    const std::string folder = "data/pxvis/Visualizations/Vis Studio/A/B";
    std::filesystem::create_directories(home / folder);
    home.Write(folder + "/Ocean.pxv", ocean);
    const std::string records = home.Path("song.records");
    REQUIRE(std::system(("'" PXVIS_BINARY_DIR "/bin/pxvis' analyze '" PXVIS_SOURCE_DIR
                         "/data/demo/pxvis-demo.opus' --from 10 --to 14 > '"
                + records + "'")
                            .c_str())
        == 0);

    ChildProcess host(
        { PXVIS_BINARY_DIR "/bin/xlib-host", PXVIS_BINARY_DIR "/bin/libpxvis.so", records });
    HostWindow window;
    REQUIRE(Until([&] { return window.Find(); }));
    // The first mode cycles through the shipped scripts, which are not one colour.
    CHECK(Until([&] {
        const ScreenPixels pixels = window.Pixels();
        return pixels.Count(pixels.At(5, 5), 0, 0, 1280, 720) < 1280 * 720 * 99 / 100;
    }));

    for (const char* title : { "A\\Cycle All", "A\\B\\Cycle All", "A\\B\\Ocean" }) {
        HostWindow::Press("space");
        CHECK(Until([&] { return window.Title() == title; }));
    }
    const auto isOcean = [&](int width, int height) {
        const ScreenPixels pixels = window.Pixels();
        return pixels.GetWidth() == width && pixels.At(2, 2) == blue
            && pixels.At(width - 3, height - 3) == blue
            && pixels.Count(blue, 0, 0, width, height) < width * height;
    };
    CHECK(Until([&] { return isOcean(1280, 720); }));
    window.Resize(500, 900);
    CHECK(Until([&] { return isOcean(500, 900); }));

    // The wave moves with the song.
    const ScreenPixels before = window.Pixels();
    CHECK(Until([&] {
        const ScreenPixels now = window.Pixels();
        int changed = 0;
        for (int y = 300; y < 600; ++y)
            changed += now.At(250, y) != before.At(250, y);
        return changed > 0;
    }));
    HostWindow::Press("q");
    CHECK(host.Wait(20) == 0);
}
