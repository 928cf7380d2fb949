#include "WindowTesting.h"

#include "foundation/IOQImage.h"
#include "foundation/OQSiblingModules.h"

#include <QGuiApplication>

#include <cstdlib>
#include <limits>
#include <memory>
#include <thread>

TEST_CASE("a window fills the parent, paints, follows its size and knows whether it can be seen")
{
    InProcessOfItsOwn([] {
        XvfbDisplay display;
        PlainHost host;
        TestWnd wnd;
        wnd.SetText(u"PXVisEngine");
        REQUIRE(wnd.CreateChild(host.GetWindow(), u"Some Class"));
        CHECK_FALSE(wnd.CreateChild(host.GetWindow(), u"Some Class"));
        const auto handle = static_cast<uint32_t>(wnd.GetHandle());
        CHECK(handle != 0);
        CHECK(wnd.initialized == 1);
        CHECK(wnd.sizes == std::vector<OQSize> { { 300, 200 } });
        CHECK(host.GetTextProperty(handle, XCB_ATOM_WM_CLASS)
            == std::string("Some Class\0Some Class\0", 22));
        const auto shows = [&](int width, int height) {
            const ScreenPixels pixels(display.GetName(), host.GetWindow());
            return pixels.Count(wnd.color, 0, 0, width, height) == width * height;
        };
        CHECK(PumpUntil([&] { return shows(300, 200); }));
        CHECK(wnd.IsVisible());
        CHECK(wnd.GetRect() == OQRect { 0, 0, 300, 200 });

        host.Configure(20, 30, 411, 123);
        CHECK(PumpUntil([&] { return shows(411, 123); }));
        CHECK(wnd.sizes.back() == OQSize { 411, 123 });
        CHECK(wnd.GetClientSize() == OQSize { 411, 123 });
        host.Configure(20, 30, 1, 1);
        CHECK(PumpUntil([&] { return wnd.GetClientSize() == OQSize { 1, 1 }; }));

        host.Show(false);
        CHECK_FALSE(wnd.IsVisible());
        host.Show(true);
        CHECK(wnd.IsVisible());
        host.SetHidden(true); // as window managers mark what they keep for a preview
        CHECK(PumpUntil([&] { return !wnd.IsVisible(); }));
        host.SetHidden(false);
        CHECK(PumpUntil([&] { return wnd.IsVisible(); }));
        wnd.Destroy();
        CHECK(wnd.terminated == 1);
        CHECK(wnd.GetHandle() == 0);
        REQUIRE(wnd.CreateChild(host.GetWindow(), u"Again"));
        CHECK(wnd.initialized == 2);
        host.Configure(0, 0, 50, 50);
        CHECK(PumpUntil([&] { return shows(50, 50); }));
    });
}

TEST_CASE("a parent that goes first takes the window along, told once")
{
    InProcessOfItsOwn([] {
        XvfbDisplay display;
        PlainHost host;
        const uint32_t pane = host.MakeChild(host.GetWindow(), 10, 10, 100, 80, 0xFFFFFF);
        TestWnd watched;
        TestWnd unaware;
        REQUIRE(watched.CreateChild(pane, u"Watched"));
        const uint32_t otherPane = host.MakeChild(host.GetWindow(), 150, 10, 100, 80, 0xFFFFFF);
        REQUIRE(unaware.CreateChild(otherPane, u"Unaware"));
        CHECK(PumpUntil([&] { return watched.paints > 0 && unaware.paints > 0; }));
        host.DestroyWindow(pane);
        CHECK(PumpUntil([&] { return watched.terminated > 0; }));
        CHECK(watched.GetHandle() == 0);
        CHECK_FALSE(watched.IsVisible());
        CHECK_FALSE(watched.SetTimer(1, 10));
        CHECK_FALSE(watched.Post(1));
        watched.Invalidate();
        watched.Destroy();
        CHECK(watched.terminated == 1);

        host.DestroyWindow(otherPane);
        CHECK_FALSE(unaware.IsVisible()); // though nobody told it yet
        unaware.Destroy();
        PumpFor(50);
        CHECK(unaware.terminated == 1);
        REQUIRE(watched.CreateChild(host.GetWindow(), u"Watched")); // the object lives on
    });
}

TEST_CASE("what is no window of the display holds none of ours")
{
    InProcessOfItsOwn([] {
        XvfbDisplay display;
        PlainHost host;
        TestWnd wnd;
        const uint32_t gone = host.MakeChild(host.GetWindow(), 0, 0, 9, 9, 0);
        host.DestroyWindow(gone);
        for (const uintptr_t parent : { uintptr_t(0), uintptr_t(gone), uintptr_t(0x1FFFFFFF),
                 uintptr_t(0xFFFFFFFF), std::numeric_limits<uintptr_t>::max() }) {
            CHECK_FALSE(wnd.CreateChild(parent, u"None"));
            CHECK(wnd.GetHandle() == 0);
        }
        bool made = true; // another thread than the application's
        std::thread([&] { made = TestWnd().CreateChild(host.GetWindow(), u"None"); }).join();
        CHECK_FALSE(made);
        CHECK(wnd.initialized == 0);
        CHECK(wnd.terminated == 0);
        CHECK(wnd.CreateChild(host.GetWindow(), nullptr));
    });
}

TEST_CASE("other threads invalidate and post, and timers and registered messages run")
{
    InProcessOfItsOwn([] {
        XvfbDisplay display;
        PlainHost host;
        TestWnd wnd;
        REQUIRE(wnd.CreateChild(host.GetWindow(), u"Threads"));
        CHECK(PumpUntil([&] { return wnd.paints > 0; }));
        PumpFor(100);
        const int before = wnd.paints;
        std::thread([&] {
            for (int i = 0; i < 1000; ++i) {
                wnd.Invalidate();
                wnd.Post(2000, i);
            }
        }).join();
        CHECK(PumpUntil([&] { return wnd.messages.size() == 1000; }));
        PumpFor(50);
        CHECK(wnd.paints == before + 1);
        for (uint32_t i = 0; i < 1000; ++i)
            REQUIRE(wnd.messages[i] == 2000 + i);
        wnd.Invalidate();
        wnd.Update();
        CHECK(wnd.paints == before + 2); // no tick in between
        wnd.Update();
        CHECK(wnd.paints == before + 2);

        int resized = 0;
        wnd.RegisterMessage(1124, [&](intptr_t p1, intptr_t p2) { resized += int(p1 + p2); });
        wnd.Send(1124, 1, 2);
        CHECK(resized == 3);
        CHECK(wnd.Post(1124, 10));
        CHECK(PumpUntil([&] { return resized == 13; }));
        CHECK(wnd.messages.size() == 1000);

        CHECK(wnd.SetTimer(7, 10));
        CHECK(wnd.SetTimer(8, 1000000));
        CHECK(PumpUntil([&] { return wnd.timers.size() == 3; }));
        CHECK(wnd.timers == std::vector<int32_t> { 7, 7, 7 });
        CHECK(wnd.KillTimer(7));
        CHECK_FALSE(wnd.KillTimer(7));
        PumpFor(60);
        CHECK(wnd.timers.size() == 3);
    });
}

TEST_CASE("a window's object may be deleted in each of its events")
{
    InProcessOfItsOwn([] {
        XvfbDisplay display;
        PlainHost host;
        for (const char* const fatal :
            { "Initialize", "Size", "Paint", "Timer", "Message", "Terminate", "Mouse" }) {
            CAPTURE(fatal);
            auto* wnd = new TestWnd;
            int terminated = 0;
            wnd->onEvent = [&](const char* event) {
                terminated += std::string(event) == "Terminate";
                if (!wnd || std::string(event) != fatal)
                    return;
                delete std::exchange(wnd, nullptr);
                if (std::string(event) != "Paint") // a host may tick wherever it is called
                    OQToolkit::Get().ProcessEvents(0);
            };
            wnd->CreateChild(host.GetWindow(), u"Fatal");
            if (wnd) {
                wnd->SetTimer(1, 20);
                wnd->Post(5);
            }
            if (wnd && std::string(fatal) == "Terminate")
                wnd->Destroy();
            else if (wnd && std::string(fatal) == "Mouse")
                RunProgram({ "xdotool", "mousemove", "150", "100", "click", "1" });
            CHECK(PumpUntil([&] { return wnd == nullptr; }));
            CHECK(terminated == 1);
            PumpFor(30);
            CHECK(ScreenPixels(display.GetName(), host.GetWindow()).At(50, 50) == 0x404040);
        }
    });
}

TEST_CASE("a window that is made anew in one of its events is painted from then on")
{
    InProcessOfItsOwn([] {
        XvfbDisplay display;
        PlainHost host;
        for (const char* const event : { "Paint", "Timer" }) {
            CAPTURE(event);
            TestWnd wnd;
            wnd.onEvent = [&](const char* name) {
                if (std::string(name) != event || wnd.initialized > 1)
                    return;
                wnd.Destroy();
                CHECK(wnd.CreateChild(host.GetWindow(), u"Anew"));
            };
            REQUIRE(wnd.CreateChild(host.GetWindow(), u"Old"));
            wnd.SetTimer(1, 20);
            REQUIRE(PumpUntil([&] { return wnd.initialized == 2; }));
            PumpFor(100); // the first one is gone for good
            const int paints = wnd.paints;
            wnd.Invalidate();
            CHECK(PumpUntil([&] { return wnd.paints > paints; }));
            CHECK(wnd.Post(7));
            CHECK(PumpUntil([&] { return wnd.messages == std::vector<uint32_t> { 7 }; }));
        }
    });
}

TEST_CASE("a host that ticks in a paint starts no other one there")
{
    InProcessOfItsOwn([] {
        XvfbDisplay display;
        PlainHost host;
        TestWnd wnd;
        int depth = 0;
        int deepest = 0;
        wnd.onEvent = [&](const char* name) {
            if (std::string(name) != "Paint" || depth > 5)
                return;
            deepest = std::max(deepest, ++depth);
            wnd.Invalidate();
            CHECK(OQToolkit::Get().ProcessEvents(5));
            --depth;
        };
        REQUIRE(wnd.CreateChild(host.GetWindow(), u"Tick"));
        CHECK(PumpUntil([&] { return wnd.paints > 5; }));
        CHECK(deepest == 1);
    });
}

TEST_CASE("mouse events arrive where the window is, also through a window that lies over it")
{
    InProcessOfItsOwn([] {
        XvfbDisplay display;
        PlainHost host;
        TestWnd wnd;
        REQUIRE(wnd.CreateChild(host.GetWindow(), u"Mouse"));
        CHECK(PumpUntil([&] { return wnd.paints > 0; }));
        const auto press = [&](int x, int y, const char* button) {
            const size_t before = wnd.mouse.size();
            RunProgram(
                { "xdotool", "mousemove", std::to_string(x), std::to_string(y), "click", button });
            PumpUntil([&] { return wnd.mouse.size() > before + 2; }, 300);
            for (size_t i = before; i < wnd.mouse.size(); ++i) {
                if (wnd.mouse[i].action == OQMouseAction::Press
                    || wnd.mouse[i].action == OQMouseAction::Wheel)
                    return wnd.mouse[i];
            }
            return OQMouseEvent();
        };
        OQMouseEvent event = press(130, 90, "3"); // the host's window lies at 100, 50
        CHECK(event.button == OQMouseRight);
        CHECK(event.x == 30);
        CHECK(event.y == 40);
        CHECK(wnd.CountMouse(OQMouseAction::Enter) == 1);
        CHECK(wnd.CountMouse(OQMouseAction::Release) == 1);
        CHECK(press(130, 90, "4").wheel == 120);

        host.Configure(400, 300, 320, 210);
        event = press(410, 320, "1");
        CHECK(event.button == OQMouseLeft);
        CHECK(event.x == 10);
        CHECK(event.y == 20);

        PlainHost presenter; // of another client, as accelerated presentation is
        const uint32_t over
            = presenter.MakeChild(static_cast<uint32_t>(wnd.GetHandle()), 0, 0, 320, 210, 0x00FF00);
        event = press(450, 350, "1");
        CHECK(event.x == 50);
        CHECK(event.y == 50);
        wnd.Invalidate();
        PumpFor(100);
        CHECK(ScreenPixels(display.GetName(), host.GetWindow()).At(160, 105) == 0x00FF00);
        presenter.DestroyWindow(over);
        CHECK(PumpUntil([&] {
            return ScreenPixels(display.GetName(), host.GetWindow()).At(160, 105) == wnd.color;
        }));
        RunProgram({ "xdotool", "mousemove", "1000", "900" });
        CHECK(PumpUntil([&] { return wnd.CountMouse(OQMouseAction::Leave) > 0; }));
    });
}

namespace {

void CheckPicture()
{
    XvfbDisplay display;
    PlainHost host(301, 201);
    const std::unique_ptr<IOQImage> image(OQCreateImage());
    REQUIRE(image->Create(300, 100, 0, 0));
    for (int i = 0; i < 300 * 100; ++i)
        image->GetBits()[i] = i % 2 ? 0xFFFFFF : 0;

    struct PictureWnd final : TestWnd
    {
        void OnPaint(IOQPaint& paint) override
        {
            paint.FillRect(GetClientRect(), 0xFF0000);
            CHECK(paint.DrawImage(*image, { 0, 0, 300, 100 }));
            CHECK(paint.DrawImage(*image, { 0, 100, 150, 201 }));
            CHECK_FALSE(paint.DrawImage(*image, { 10, 10, 10, 20 }));
            CHECK_FALSE(paint.DrawImage(*image, { 0, 0, 2000000000, 2000000000 }));
        }

        IOQImage* image;
    } wnd;

    wnd.image = image.get();
    REQUIRE(wnd.CreateChild(host.GetWindow(), u"Picture"));
    CHECK(wnd.GetClientSize() == OQSize { 301, 201 });
    CHECK(PumpUntil([&] {
        const ScreenPixels pixels(display.GetName(), host.GetWindow());
        return pixels.Count(0xFFFFFF, 0, 0, 300, 100) == 15000
            && pixels.Count(0x000000, 0, 0, 300, 100) == 15000 && pixels.At(299, 99) != 0
            && pixels.At(0, 0) == 0 && pixels.Count(0xFF0000, 300, 0, 301, 201) == 201
            && pixels.Count(0xFF0000, 150, 100, 301, 201) == 151 * 101;
    }));
}

}

TEST_CASE("a picture is stretched over the pixels of its rectangle")
{
    InProcessOfItsOwn(CheckPicture);
}

TEST_CASE("a picture is stretched over device pixels where the user's unit is larger")
{
    InProcessOfItsOwn([] {
        setenv("QT_SCALE_FACTOR", "1.5", 1);
        CheckPicture();
        CHECK(qGuiApp->devicePixelRatio() == 1.5);
    });
}
