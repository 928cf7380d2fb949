#include "PresenterTesting.h"
#include "TestVariable.h"
#include "XvfbDisplay.h"

#include <doctest/doctest.h>

#include <string>

using pxvis::Presenter;

namespace {

struct MethodCase
{
    const char* variable;
    const char* method;
};

constexpr MethodCase kMethods[]
    = { { "egl", "EGL" }, { "shm", "MIT-SHM" }, { "put", "XPutImage" } };

}

TEST_CASE("Each method shows pictures upright and stretched, whatever their size and the window's")
{
    const XvfbDisplay display;
    REQUIRE(display.IsRunning());
    for (const auto& [variable, method] : kMethods) {
        CAPTURE(method);
        const TestVariable only("PXVIS_PRESENT", variable);
        HostWindow window(320, 240);
        Presenter presenter(window.Id());
        CHECK(presenter.Method() == std::string());
        CHECK(IsShownSoon(presenter, window, Squares(5, 4), 320, 240));
        CHECK(presenter.Method() == std::string(method));
        CHECK(IsShownSoon(presenter, window, Squares(320, 240), 320, 240));
        window.Resize(401, 333);
        CHECK(IsShownSoon(presenter, window, Squares(6, 9), 401, 333));
        window.Resize(1, 1);
        CHECK(IsShownSoon(presenter, window, Squares(1, 1), 1, 1));
    }
}
