#include "ChildProcess.h"
#include "apps/player/display/DisplayDesk.h"

#include <doctest/doctest.h>

using namespace pxvis::player;

namespace {

constexpr uint32_t red = DisplayDesk::red;
constexpr uint32_t blue = DisplayDesk::blue;

}

TEST_CASE("The area shows the mode, at each size and in full screen, and comes back")
{
    InProcessOfItsOwn([] {
        const DisplayDesk desk;
        VisualHost host;
        FakeSound sound;
        host.SetSound(&sound);
        QWidget window;
        window.resize(500, 400);
        DisplayArea area(host, &window);
        area.setGeometry(50, 30, 400, 300);
        window.show();
        QString error;
        REQUIRE(area.Start(DisplayDesk::library, error));
        area.SetMode("Test\\Red");
        CHECK(desk.RunUntil([&] { return desk.Pixels(window).At(55, 35) == red; }));
        const ScreenPixels p = desk.Pixels(window);
        CHECK(p.Count(red, 0, 0, 500, 400) == 400 * 300);
    });
}
