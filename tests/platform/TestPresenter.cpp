#include "ChildProcess.h"
#include "PresenterTesting.h"
#include "TestVariable.h"
#include "XvfbDisplay.h"

#include <doctest/doctest.h>

#include <cstdlib>
#include <epoxy/egl.h>
#include <filesystem>
#include <memory>
#include <string>

using pxvis::Presenter;
using std::chrono::milliseconds;

namespace {

struct MethodCase
{
    const char* variable;
    const char* method;
};

constexpr MethodCase kMethods[]
    = { { "egl", "EGL" }, { "shm", "MIT-SHM" }, { "put", "XPutImage" } };

// How long that takes.
milliseconds TimeToDestroy(std::unique_ptr<Presenter> presenter)
{
    const auto start = std::chrono::steady_clock::now();
    presenter.reset();
    return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
}

ptrdiff_t CountOpenFiles()
{
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::distance(begin(files), end(files));
}

// An event of the type arrives at the window of the host.
bool Arrives(const HostWindow& window, uint8_t type)
{
    return HoldsSoon([&] {
        const std::unique_ptr<xcb_generic_event_t, decltype(&std::free)> event(
            xcb_poll_for_event(window.Connection()), std::free);
        return event && (event->response_type & 0x7F) == type;
    });
}

}

TEST_CASE("Each method shows pictures upright and stretched, whatever their size and the window's")
{
    const XvfbDisplay display;
    REQUIRE(display.IsRunning());
    for (const auto& [variable, method] : kMethods) {
        CAPTURE(std::string(method));
        const TestVariable only("PXVIS_PRESENT", variable);
        HostWindow window(320, 240);
        Presenter presenter(window.Id());
        CHECK(presenter.Method() == std::string());
        CHECK(IsShownSoon(presenter, Squares(5, 4), 320, 240));
        CHECK(presenter.Method() == std::string(method));
        CHECK(IsShownSoon(presenter, Squares(320, 240), 320, 240));
        window.Resize(401, 333);
        CHECK(IsShownSoon(presenter, Squares(320, 240), 401, 333));
        CHECK(IsShownSoon(presenter, Squares(6, 9), 401, 333));
        window.Resize(1, 1);
        CHECK(IsShownSoon(presenter, Squares(1, 1), 1, 1));
        window.Resize(30, 20);
        CHECK(IsShownSoon(presenter, Squares(200, 1), 30, 20));
    }
}

TEST_CASE("EGL comes first where a GPU draws for it, else shared memory")
{
    const TestVariable leaks(
        "ASAN_OPTIONS", "detect_leaks=0"); // Mesa loses the name of the renderer
    InProcessOfItsOwn([] {
        const XvfbDisplay display;
        REQUIRE(display.IsRunning());
        const HostWindow window(64, 48);
        const auto method = [&] {
            Presenter presenter(window.Id());
            REQUIRE(IsShownSoon(presenter, Squares(5, 4), 64, 48));
            return std::string(presenter.Method());
        };
        const TestVariable software("LIBGL_ALWAYS_SOFTWARE", "1");
        CHECK(method() == "MIT-SHM");
        const TestVariable renderer("force_gl_renderer", "A GPU"); // an option that Mesa has
        CHECK(method() == "EGL");
        const TestVariable drivers("LIBGL_DRIVERS_PATH", "/nonexistent");
        CHECK(method() == "MIT-SHM");
    });
}

TEST_CASE("Nothing is shown where there is nothing to show it in, or nothing to show")
{
    {
        const TestVariable none("DISPLAY", ":0.no");
        Presenter presenter(1);
        CHECK(FailsSoon(presenter));
    }
    const XvfbDisplay display;
    REQUIRE(display.IsRunning());
    for (const uintptr_t id : { uintptr_t { 0 }, uintptr_t { 0x7FFFFFF }, ~uintptr_t { 0 } }) {
        Presenter presenter(id);
        CHECK(FailsSoon(presenter));
        CHECK(presenter.Method() == std::string());
        CHECK_FALSE(presenter.Present(Squares(4, 3), 32, 24)); // for good
    }
    const HostWindow window(64, 48);
    {
        const TestVariable only("PXVIS_PRESENT", "none");
        Presenter presenter(window.Id());
        CHECK(FailsSoon(presenter));
    }
    Presenter presenter(window.Id());
    REQUIRE(IsShownSoon(presenter, Squares(5, 4), 64, 48));
    const uint32_t pixel = 0;
    CHECK(presenter.Present({ nullptr, 4, 3 }, 64, 48));
    CHECK(presenter.Present({ &pixel, 0, 1 }, 64, 48));
    CHECK(presenter.Present({ &pixel, 1, -1 }, 64, 48));
    CHECK(presenter.Present({ &pixel, 1, 1 }, 0, 48));
    CHECK_FALSE(presenter.Present({ &pixel, 16385, 1 }, 64, 48));
    CHECK_FALSE(presenter.Present({ &pixel, 16384, 16384 }, 64, 48));
    CHECK_FALSE(presenter.Present({ &pixel, 1, 1 }, 64, 32768));
    CHECK(IsShownSoon(presenter, Squares(6, 4), 64, 48));
}

TEST_CASE("Windows larger than a request or the screen show their part of the picture")
{
    const XvfbDisplay display;
    REQUIRE(display.IsRunning());
    for (const auto& [variable, method] : kMethods) {
        CAPTURE(std::string(method));
        const TestVariable only("PXVIS_PRESENT", variable);
        const HostWindow window(16384, 50);
        Presenter presenter(window.Id());
        CHECK(IsShownSoon(presenter, Squares(9, 7), 16384, 50));
    }
    const TestVariable only("PXVIS_PRESENT", "put");
    const HostWindow window(4500, 950);
    Presenter presenter(window.Id());
    CHECK(IsShownSoon(presenter, Squares(9, 7), 4500, 950));
}

TEST_CASE("A window that goes takes presenting with it, and a display does")
{
    for (const auto& [variable, method] : kMethods) {
        CAPTURE(std::string(method));
        const TestVariable only("PXVIS_PRESENT", variable);
        XvfbDisplay display;
        REQUIRE(display.IsRunning());
        HostWindow window(64, 48);
        Presenter presenter(window.Id());
        REQUIRE(IsShownSoon(presenter, Squares(5, 4), 64, 48));
        window.Destroy();
        CHECK(FailsSoon(presenter));
        CHECK(presenter.Method() == std::string());

        const HostWindow other(64, 48);
        Presenter abandoned(other.Id());
        REQUIRE(IsShownSoon(abandoned, Squares(5, 4), 64, 48));
        display.Kill();
        CHECK(FailsSoon(abandoned));
    }
}

TEST_CASE("Presenters one after another leave nothing behind, whatever their last frame is doing")
{
    const XvfbDisplay display;
    REQUIRE(display.IsRunning());
    const HostWindow window(64, 48);
    const Squares picture(5, 4);
    ptrdiff_t files = 0;
    for (int i = 0; i < 50; ++i) {
        const TestVariable only("PXVIS_PRESENT", kMethods[i % 3].variable);
        auto presenter = std::make_unique<Presenter>(window.Id());
        for (int frame = 0; frame < i % 4; ++frame) // none, too
            CHECK(presenter->Present(picture, 64, 48));
        if (i % 5 == 0)
            REQUIRE(IsShownSoon(*presenter, picture, 64, 48));
        CHECK(TimeToDestroy(std::move(presenter)) < milliseconds(1000));
        if (i == 8)
            files = CountOpenFiles();
    }
    CHECK(CountOpenFiles() <= files);
}

TEST_CASE("A server that answers no more holds nobody up")
{
    for (const auto& [variable, method] : kMethods) {
        CAPTURE(std::string(method));
        const TestVariable only("PXVIS_PRESENT", variable);
        XvfbDisplay display;
        REQUIRE(display.IsRunning());
        const HostWindow window(64, 48);
        auto presenter = std::make_unique<Presenter>(window.Id());
        REQUIRE(IsShownSoon(*presenter, Squares(5, 4), 64, 48));
        display.Pause();
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < 10; ++i)
            CHECK(presenter->Present(Squares(5, 4), 60 + i, 48));
        CHECK(std::chrono::steady_clock::now() - start < std::chrono::seconds(1));
        CHECK(TimeToDestroy(std::move(presenter)) < milliseconds(1000));
    }
}

TEST_CASE("A context that the caller's thread has stays current and whole")
{
    const XvfbDisplay display;
    REQUIRE(display.IsRunning());
    constexpr EGLenum surfaceless = 0x31DD; // EGL_PLATFORM_SURFACELESS_MESA
    const EGLDisplay own = eglGetPlatformDisplayEXT(surfaceless, nullptr, nullptr);
    REQUIRE(eglInitialize(own, nullptr, nullptr));
    REQUIRE(eglBindAPI(EGL_OPENGL_API));
    const EGLContext context = eglCreateContext(own, nullptr, EGL_NO_CONTEXT, nullptr);
    REQUIRE(eglMakeCurrent(own, EGL_NO_SURFACE, EGL_NO_SURFACE, context));
    const HostWindow window(64, 48);
    const TestVariable only("PXVIS_PRESENT", "egl");
    {
        Presenter presenter(window.Id());
        REQUIRE(IsShownSoon(presenter, Squares(5, 4), 64, 48));
        REQUIRE(presenter.Method() == std::string("EGL"));
        CHECK(eglGetCurrentContext() == context);
    }
    CHECK(eglGetCurrentContext() == context);
    CHECK(eglMakeCurrent(own, EGL_NO_SURFACE, EGL_NO_SURFACE, context));
    eglMakeCurrent(own, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    CHECK(eglDestroyContext(own, context));
    CHECK(eglTerminate(own));
}

TEST_CASE("Buttons and keys over the picture are the window's")
{
    XvfbDisplay display;
    REQUIRE(display.IsRunning());
    const HostWindow window(320, 240,
        XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_POINTER_MOTION);
    Presenter presenter(window.Id());
    REQUIRE(IsShownSoon(presenter, Squares(5, 4), 320, 240));
    REQUIRE(display.Start({ "xdotool", "mousemove", "100", "100", "click", "1", "key", "a" }));
    CHECK(Arrives(window, XCB_MOTION_NOTIFY));
    CHECK(Arrives(window, XCB_BUTTON_PRESS));
    CHECK(Arrives(window, XCB_KEY_PRESS));
}
