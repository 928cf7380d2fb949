#include "TestVariable.h"
#include "WindowTesting.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QGuiApplication>

#include <clocale>
#include <cstdlib>
#include <dlfcn.h>
#include <string>

TEST_CASE("without a display or Qt's plugin for it there is no window and the process goes on")
{
    InProcessOfItsOwn([] {
        TestWnd wnd;
        unsetenv("DISPLAY");
        CHECK_FALSE(wnd.CreateChild(1, u"None"));
        setenv("DISPLAY", ":12345", 1);
        CHECK_FALSE(wnd.CreateChild(1, u"None"));
        setenv("DISPLAY", "nonsense", 1);
        CHECK_FALSE(wnd.CreateChild(1, u"None"));
        CHECK_FALSE(OQToolkit::Get().ProcessEvents(0));
        CHECK_FALSE(QCoreApplication::instance());
        XvfbDisplay display; // it may come later
        PlainHost host;
        CHECK(wnd.CreateChild(host.GetWindow(), u"Late"));
    });
}

TEST_CASE("the application that is made leaves the host's locale and environment alone")
{
    InProcessOfItsOwn([] {
        XvfbDisplay display;
        PlainHost host;
        setenv("LC_ALL", "C.UTF-8", 1);
        setenv("QT_QPA_PLATFORM", "offscreen", 1); // meant for other programs
        const std::string before = setlocale(LC_ALL, nullptr);
        TestWnd wnd;
        REQUIRE(wnd.CreateChild(host.GetWindow(), u"Own"));
        CHECK(setlocale(LC_ALL, nullptr) == before);
        CHECK(before == "C");
        CHECK(std::string(getenv("QT_QPA_PLATFORM")) == "offscreen");
        CHECK(QGuiApplication::platformName() == u"xcb");
        CHECK_FALSE(QGuiApplication::quitOnLastWindowClosed());
        CHECK(PumpUntil([&] { return wnd.paints > 0; }));
    });
}

TEST_CASE("a process may end with a window that nobody destroyed")
{
    InProcessOfItsOwn([] {
        static XvfbDisplay display;
        static PlainHost host;
        static auto* const wnd = new TestWnd;
        REQUIRE(wnd->CreateChild(host.GetWindow(), u"Left"));
        wnd->SetTimer(1, 5);
        CHECK(PumpUntil([&] { return !wnd->timers.empty(); }));
    });
}

TEST_CASE("a window object that lives longer than main is destroyed at the end")
{
    InProcessOfItsOwn([] {
        static XvfbDisplay display;
        static PlainHost host;
        static TestWnd wnd;
        REQUIRE(wnd.CreateChild(host.GetWindow(), u"Static"));
        CHECK(PumpUntil([&] { return wnd.paints > 0; }));
    });
}

TEST_CASE("a display that goes takes the windows along and not the process")
{
    // Qt is not touched any more then, and what its threads had posted stays undelivered.
    const TestVariable leaks("ASAN_OPTIONS", "detect_leaks=0");
    InProcessOfItsOwn([] {
        XvfbDisplay display;
        PlainHost host;
        TestWnd first;
        TestWnd second;
        REQUIRE(first.CreateChild(host.GetWindow(), u"First"));
        REQUIRE(second.CreateChild(host.GetWindow(), u"Second"));
        CHECK(PumpUntil([&] { return first.paints > 0; }));
        first.onEvent = [&](const char* event) {
            if (std::string(event) == "Terminate")
                second.Destroy();
        };
        first.SetTimer(1, 1);
        display.Kill();
        CHECK_FALSE(OQToolkit::Get().ProcessEvents(10));
        CHECK(first.terminated == 1);
        CHECK(second.terminated == 1);
        CHECK(first.GetHandle() == 0);
        first.Invalidate();
        CHECK_FALSE(first.CreateChild(host.GetWindow(), u"First"));
        PumpFor(50);
        const XvfbDisplay another; // Qt's connection doesn't come back
        CHECK_FALSE(first.CreateChild(1, u"First"));
    });
}

TEST_CASE("a host's GLib loop drives the windows without a tick")
{
    InProcessOfItsOwn([] {
        XvfbDisplay display;
        PlainHost host;
        TestWnd wnd;
        REQUIRE(wnd.CreateChild(host.GetWindow(), u"GLib"));
        using Iterate = int (*)(void*, int);
        const auto iterate = reinterpret_cast<Iterate>(
            dlsym(dlopen("libglib-2.0.so.0", RTLD_LAZY | RTLD_NOLOAD), "g_main_context_iteration"));
        const std::string dispatcher
            = QAbstractEventDispatcher::instance()->metaObject()->className();
        if (!iterate || dispatcher.find("Glib") == std::string::npos)
            return; // a Qt without GLib
        wnd.SetTimer(1, 10);
        for (int i = 0; i < 500 && (wnd.paints == 0 || wnd.timers.size() < 3); ++i)
            iterate(nullptr, 1);
        CHECK(wnd.paints > 0);
        host.Configure(0, 0, 77, 66);
        for (int i = 0; i < 500 && wnd.sizes.back() != OQSize { 77, 66 }; ++i)
            iterate(nullptr, 1);
        CHECK(wnd.sizes.back() == OQSize { 77, 66 });
    });
}
