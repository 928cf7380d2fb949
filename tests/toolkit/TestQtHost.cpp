#include "WindowTesting.h"

#include <QApplication>
#include <QGuiApplication>
#include <QTimer>
#include <QWidget>
#include <QWindow>

#include <memory>

namespace {

struct QtHost
{
    int argc = 1;
    char name[5] = "host";
    char* argv[2] = { name, nullptr };
    XvfbDisplay display;
    std::unique_ptr<QApplication> application = std::make_unique<QApplication>(argc, argv);
};

bool Shows(const XvfbDisplay& display, uint32_t window, uint32_t color, int width, int height)
{
    return ScreenPixels(display.GetName(), window).Count(color, 0, 0, width, height)
        == width * height;
}

}

TEST_CASE("in a widget of the host's Qt a window is a child like others")
{
    InProcessOfItsOwn([] {
        QtHost host;
        QWidget top;
        top.setGeometry(50, 50, 400, 300);
        auto* const pane = new QWidget(&top);
        pane->setGeometry(20, 30, 200, 100);
        top.show();
        TestWnd wnd;
        REQUIRE(wnd.CreateChild(pane->winId(), u"Child"));
        CHECK(wnd.GetClientSize() == OQSize { 200, 100 });
        CHECK(PumpUntil(
            [&] { return Shows(host.display, uint32_t(pane->winId()), wnd.color, 200, 100); }));
        CHECK(wnd.IsVisible());
        pane->resize(222, 111);
        CHECK(PumpUntil(
            [&] { return Shows(host.display, uint32_t(pane->winId()), wnd.color, 222, 111); }));
        CHECK(wnd.sizes.back() == OQSize { 222, 111 });
        pane->hide();
        CHECK_FALSE(wnd.IsVisible());
        pane->show();
        CHECK(PumpUntil([&] { return wnd.IsVisible(); }));

        delete pane;
        CHECK(wnd.terminated == 1);
        CHECK(wnd.GetHandle() == 0);
        wnd.Destroy();
        CHECK(wnd.terminated == 1);
        // Qt's loop runs by itself; the tick leaves the work to it.
        REQUIRE(wnd.CreateChild(top.winId(), u"Child"));
        const int before = wnd.paints;
        QTimer::singleShot(0, [&] {
            for (int i = 0; i < 20; ++i)
                CHECK(OQToolkit::Get().ProcessEvents(10));
            CHECK(wnd.paints == before);
        });
        QTimer::singleShot(300, host.application.get(), &QCoreApplication::quit);
        QApplication::exec();
        CHECK(wnd.paints > before);
        CHECK(wnd.focus.empty());
    });
}

TEST_CASE("a window deletes itself, or its parent, while it is asked something")
{
    InProcessOfItsOwn([] {
        QtHost host;
        for (const bool parentGoes : { false, true }) {
            for (const char* const fatal : { "Timer", "Message", "Paint", "Size", "Terminate" }) {
                CAPTURE(fatal);
                if (parentGoes && std::string(fatal) != "Terminate")
                    continue; // deleting a parent in its child's event is what no toolkit allows
                auto top = std::make_unique<QWidget>();
                top->resize(100, 100);
                top->show();
                auto wnd = std::make_unique<TestWnd>();
                wnd->onEvent = [&](const char* event) {
                    if (wnd && std::string(event) == fatal) {
                        if (parentGoes)
                            top.reset();
                        else
                            delete wnd.release();
                    }
                };
                wnd->CreateChild(top->winId(), u"Fatal");
                if (wnd) {
                    wnd->SetTimer(1, 20);
                    wnd->Post(5);
                }
                if (wnd && std::string(fatal) == "Terminate")
                    wnd->Destroy();
                CHECK(PumpUntil([&] { return !wnd || !top; }));
                PumpFor(30);
                if (wnd)
                    CHECK(wnd->terminated == 1);
                if (top)
                    CHECK(top->findChildren<QWidget*>().isEmpty());
            }
        }
    });
}

TEST_CASE("a host's application may end before a window in a foreign parent, and come again")
{
    InProcessOfItsOwn([] {
        QtHost host;
        PlainHost other;
        TestWnd wnd;
        REQUIRE(wnd.CreateChild(other.GetWindow(), u"Foreign"));
        CHECK(
            PumpUntil([&] { return Shows(host.display, other.GetWindow(), wnd.color, 300, 200); }));
        host.application.reset();
        CHECK(wnd.terminated == 1);
        CHECK(wnd.GetHandle() == 0);
        wnd.Invalidate();
        wnd.Destroy();
        CHECK_FALSE(OQToolkit::Get().ProcessEvents(0));
        host.application = std::make_unique<QApplication>(host.argc, host.argv);
        REQUIRE(wnd.CreateChild(other.GetWindow(), u"Foreign"));
        other.Configure(0, 0, 250, 150);
        CHECK(
            PumpUntil([&] { return Shows(host.display, other.GetWindow(), wnd.color, 250, 150); }));
        wnd.Destroy();
    });
}

TEST_CASE("a host's window that is none of its widgets is a foreign parent")
{
    InProcessOfItsOwn([] {
        QtHost host;
        QWindow window;
        window.setGeometry(30, 30, 150, 140);
        window.show();
        TestWnd wnd;
        REQUIRE(wnd.CreateChild(window.winId(), u"Foreign"));
        CHECK(PumpUntil(
            [&] { return Shows(host.display, uint32_t(window.winId()), wnd.color, 150, 140); }));
        window.resize(160, 90);
        CHECK(PumpUntil([&] { return wnd.sizes.back() == OQSize { 160, 90 }; }));
        window.destroy();
        CHECK(PumpUntil([&] { return wnd.terminated == 1; }));
    });
}

TEST_CASE("an application without widgets or without X11 has no windows for us")
{
    InProcessOfItsOwn([] {
        XvfbDisplay display;
        PlainHost plain;
        TestWnd wnd;
        char name[] = "host";
        char option[] = "-platform";
        char platform[] = "offscreen";
        char* arguments[] = { name, option, platform, nullptr };
        int count = 1;
        {
            const QGuiApplication application(count, arguments);
            CHECK_FALSE(wnd.CreateChild(plain.GetWindow(), u"None"));
        }
        count = 3;
        const QApplication application(count, arguments);
        CHECK_FALSE(wnd.CreateChild(plain.GetWindow(), u"None"));
        CHECK(wnd.initialized == 0);
    });
}
