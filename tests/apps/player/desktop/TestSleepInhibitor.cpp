#include "apps/player/desktop/SleepInhibitor.h"

#include "ScreenPixels.h"
#include "XvfbDisplay.h"
#include "apps/player/desktop/DesktopTesting.h"

#include <QDBusConnectionInterface>

#include <doctest/doctest.h>
#include <xcb/xcb.h>

using namespace pxvis::player;

namespace {

const QString saver = QStringLiteral("org.freedesktop.ScreenSaver");
const QString inhibit = QStringLiteral("Inhibit pxvis Music is playing");

struct Desktop : BusApplication
{
    FakeService service { bus.Client(), saver, "/org/freedesktop/ScreenSaver" };

    bool Sees(const QStringList& calls)
    {
        return WaitUntil([&] { return service.calls == calls; });
    }
};

}

TEST_CASE("The desktop keeps the screen on while it is asked to, also once it was started anew")
{
    const TestVariable noDisplay("DISPLAY", nullptr);
    Desktop desktop;
    SleepInhibitor inhibitor;
    inhibitor.SetOn(true);
    inhibitor.SetOn(true);
    CHECK(desktop.Sees({ inhibit }));
    inhibitor.SetOn(false);
    CHECK(desktop.Sees({ inhibit, "UnInhibit 1" }));

    desktop.service.calls.clear();
    inhibitor.SetOn(true);
    CHECK(desktop.Sees({ inhibit }));
    desktop.service.Stop();
    desktop.service.Start();
    CHECK(desktop.Sees({ inhibit, inhibit }));
    inhibitor.SetOn(false);
    CHECK(
        desktop.Sees({ inhibit, inhibit, QString("UnInhibit %1").arg(desktop.service.answered) }));
}

TEST_CASE("A desktop that takes its time keeps nobody waiting and loses no wish")
{
    const TestVariable noDisplay("DISPLAY", nullptr);
    Desktop desktop;
    desktop.service.answers = false;
    auto inhibitor = std::make_unique<SleepInhibitor>();
    inhibitor->SetOn(true);
    CHECK(desktop.Sees({ inhibit }));
    inhibitor->SetOn(false);
    inhibitor->SetOn(true);
    inhibitor->SetOn(false);
    desktop.service.AnswerNow();
    CHECK(desktop.Sees({ inhibit, "UnInhibit 1" }));

    // One that goes away leaves nobody on the bus who could keep the screen on.
    inhibitor->SetOn(true);
    CHECK(desktop.Sees({ inhibit, "UnInhibit 1", inhibit }));
    const QString asker = desktop.service.unanswered.service();
    inhibitor.reset();
    CHECK(desktop.WaitUntil(
        [&] { return !desktop.bus.Client().interface()->isServiceRegistered(asker); }));
}

TEST_CASE("An X server's own saver goes away too")
{
    const XvfbDisplay display;
    REQUIRE(display.IsRunning());
    BusApplication application;
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const xcb_window_t window = xcb_generate_id(connection);
    constexpr uint32_t red = 0xff0000;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 1280, 1024, 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL, &red);
    xcb_map_window(connection, window);
    const auto isRed = [&] { return ScreenPixels(display.GetName()).At(640, 512) == red; };
    xcb_flush(connection);
    CHECK(application.WaitUntil(isRed));
    xcb_set_screen_saver(connection, 600, 600, XCB_BLANKING_NOT_PREFERRED, XCB_EXPOSURES_ALLOWED);
    xcb_force_screen_saver(connection, XCB_SCREEN_SAVER_ACTIVE);
    xcb_flush(connection);
    CHECK(application.WaitUntil([&] { return !isRed(); }));
    SleepInhibitor inhibitor;
    inhibitor.SetOn(true);
    CHECK(application.WaitUntil(isRed));
    xcb_disconnect(connection);
}
