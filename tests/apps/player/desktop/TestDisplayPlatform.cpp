#include "apps/player/desktop/DisplayPlatform.h"

#include "TestFolder.h"
#include "XvfbDisplay.h"
#include "apps/player/desktop/DesktopTesting.h"

#include <doctest/doctest.h>

using namespace pxvis::player;

TEST_CASE("Windows are made through X11, and a user without it learns what is missing")
{
    const TestVariable platform("QT_QPA_PLATFORM", nullptr);
    const TestVariable noWayland("WAYLAND_DISPLAY", nullptr);
    {
        const XvfbDisplay display;
        REQUIRE(display.IsRunning());
        const TestVariable wayland("WAYLAND_DISPLAY", "wayland-0");
        CHECK(ChooseDisplayPlatform() == "");
        CHECK(qgetenv("QT_QPA_PLATFORM") == "xcb");
    }
    qunsetenv("QT_QPA_PLATFORM");
    const TestVariable noDisplay("DISPLAY", nullptr);
    CHECK(ChooseDisplayPlatform().contains("DISPLAY"));
    const TestVariable deadDisplay("DISPLAY", ":4242");
    CHECK(ChooseDisplayPlatform().contains("\":4242\""));
    const TestVariable wayland("WAYLAND_DISPLAY", "wayland-0");
    CHECK(ChooseDisplayPlatform().contains("XWayland"));
    qputenv("QT_QPA_PLATFORM", "offscreen"); // the user knows better
    CHECK(ChooseDisplayPlatform() == "");
    CHECK(qgetenv("QT_QPA_PLATFORM") == "offscreen");
}

TEST_CASE("What can't be shown in a window is told by the desktop and on standard error")
{
    constexpr const char* childMark = "PXVIS_TEST_TELLS";
    if (qEnvironmentVariableIsSet(childMark)) {
        TellWithoutWindow("No display <here>");
        return;
    }
    BusApplication desktop;
    FakeService service(
        desktop.bus.Client(), "org.freedesktop.Notifications", "/org/freedesktop/Notifications");
    const TestFolder folder;
    const TestVariable mark(childMark, "1");
    ChildProcess child(
        { "/proc/self/exe", "--test-case=What can't be shown*" }, folder.Path("errors"));
    CHECK(child.Wait(60, [] { QCoreApplication::processEvents(); }) == 0);
    CHECK(folder.Read("errors").find("No display <here>\n") != std::string::npos);
    CHECK(desktop.WaitUntil([&] { return service.calls.size() == 1; }));
    CHECK(service.calls.value(0).contains("No display &lt;here&gt;"));
}
