#include "Plugins/Visualization/library/PlayerWindow.h"

#include <chrono>
#include <dlfcn.h>
#include <filesystem>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

// A process finds out once where its user's files are.
struct Home
{
    TestFolder folder;
    TestVariable config { "XDG_CONFIG_HOME", folder.Path("config").c_str() };
    TestVariable data { "XDG_DATA_HOME", folder.Path("data").c_str() };
    TestVariable state { "XDG_STATE_HOME", folder.Path("state").c_str() };
};

const TestFolder& TestHome()
{
    static const Home home;
    return home.folder;
}

decltype(&CreateVisualization) Factory()
{
    static void* const library = dlopen(PXVIS_BINARY_DIR "/bin/libpxvis.so", RTLD_NOW | RTLD_LOCAL);
    return library
        ? reinterpret_cast<decltype(&CreateVisualization)>(dlsym(library, "CreateVisualization"))
        : nullptr;
}

}

XvfbDisplay& TestDisplay()
{
    static XvfbDisplay display;
    return display;
}

std::string FlushPiece(const std::string& color, const std::string& rectangle)
{
    return "<Component GUID=\"36267E6D-70E1-435e-9E2A-428EEA2D3C7E\" "
           "Name=\"Flush\"><Properties><Color>"
        + color + "</Color><Rectangle>" + rectangle + "</Rectangle></Properties></Component>";
}

PlayerWindow::PlayerWindow(uint16_t width, uint16_t height)
    : m_home(TestHome())
{
    std::filesystem::remove_all(m_home / "data");
    m_connection = xcb_connect(TestDisplay().GetName().c_str(), nullptr);
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    m_window = xcb_generate_id(m_connection);
    const uint32_t green = 0x00ff00; // whatever covers it is not the window itself
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, screen->root, 0, 0, width,
        height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL, &green);
    xcb_map_window(m_connection, m_window);
    free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

PlayerWindow::~PlayerWindow()
{
    visualization.reset();
    xcb_disconnect(m_connection);
}

void PlayerWindow::AddScript(const std::string& name, const std::string& pieces)
{
    const std::filesystem::path path = m_home / ("data/pxvis/Visualizations/Vis Studio/" + name);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << "<PXV Version=\"1.0\">" << pieces << "</PXV>";
}

void PlayerWindow::Set(const std::string& name, const std::string& value)
{
    m_settings += "<Item Name=\"" + name + "\">" + value + "</Item>";
}

uintptr_t PlayerWindow::Open()
{
    std::filesystem::create_directories(m_home / "config/pxvis");
    std::ofstream(m_home / "config/pxvis/settings.xml")
        << "<Settings><Key Path=\"Plugins\\Display\\Visualizations\">" << m_settings
        << "</Key></Settings>";
    if (!Factory())
        return 0;
    visualization.reset(Factory()(2, &host));
    return visualization ? visualization->CreateWnd(m_window, 0) : 0;
}

void PlayerWindow::Run(int milliseconds)
{
    RunUntil([] { return false; }, milliseconds);
}

bool PlayerWindow::RunUntil(const std::function<bool()>& isSo, int milliseconds)
{
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    while (Clock::now() < end) {
        visualization->SetProperty(u"Process Events", u"5");
        if (isSo())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
    }
    return false;
}

ScreenPixels PlayerWindow::Pixels() const
{
    return ScreenPixels(TestDisplay().GetName(), m_window);
}

uint32_t PlayerWindow::Middle() const
{
    const ScreenPixels pixels = Pixels();
    return pixels.At(pixels.GetWidth() / 2, pixels.GetHeight() / 2);
}

void PlayerWindow::Resize(uint16_t width, uint16_t height)
{
    const uint32_t size[] = { width, height };
    xcb_configure_window(
        m_connection, m_window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
    xcb_flush(m_connection);
}

void PlayerWindow::CoverAndUncover()
{
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    const uint32_t values[] = { 0xff00ff, 1 }; // background, nobody manages it
    const xcb_window_t cover = xcb_generate_id(m_connection);
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, cover, screen->root, 0, 0, 2000, 2000, 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
        XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
    xcb_map_window(m_connection, cover);
    free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    Run(50);
    xcb_destroy_window(m_connection, cover);
    free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

void PlayerWindow::DestroyWindow()
{
    xcb_destroy_window(m_connection, m_window);
    xcb_flush(m_connection);
}
