#include "apps/player/PlayerSettings.h"
#include "apps/player/ScriptShow.h"
#include "apps/player/collection/SongLibrary.h"
#include "apps/player/display/DisplayDesk.h"

using namespace pxvis::player;

namespace {

struct Show
{
    Show()
    {
        REQUIRE(desk.Open());
        settings.SetNumber("Rotation Interval", ScriptShow::leastInterval);
    }

    DisplayDesk desk;
    SongLibrary library { SongLibrary::DefaultPath() };
    PlayerSettings settings;
    ScriptShow show { desk.area, library, settings };
};

}

TEST_CASE("Scripts change by rating from the start on, unless the user has all of them in turns")
{
    InProcessOfItsOwn([] {
        Show of;
        ScriptShow& show = of.show;
        of.desk.area.SetMode(of.desk.area.Modes().value(0));
        of.settings.SetNumber("Rotation", 1); // as in the first run
        show.Start({});
        CHECK(show.IsRotating());
        REQUIRE(show.CanRate()); // so it is one script
        const QString first = show.Name();
        CHECK(of.desk.RunUntil([&] { return show.Name() != first; }, 30'000));
        CHECK(show.CanGoBack());
        show.Back();
        CHECK(show.Name() == first);

        show.Rate(SongLibrary::never);
        const QString second = show.Name();
        CHECK(second != first);
        show.SetHeld(true);
        of.desk.Run(1000 * ScriptShow::leastInterval + 1000);
        CHECK(show.Name() == second);

        show.Choose("Test\\Red");
        CHECK(show.IsRotating());
        CHECK(show.Folder() == "Test");
        show.Choose(of.desk.area.Modes().value(0));
        CHECK_FALSE(show.IsRotating());
        CHECK_FALSE(show.CanRate());
    });
}

TEST_CASE(
    "A script file stands in for the mode, and what is wrong with it is told until it is mended")
{
    InProcessOfItsOwn([] {
        Show of;
        ScriptShow& show = of.show;
        const auto isTold
            = [&](const char* what) { return show.Fault().startsWith(QString("mine.pxv") + what); };
        show.Start(of.desk.home.Path("mine.pxv").c_str());
        CHECK_FALSE(show.IsRotating());
        CHECK(isTold(": there is no such script"));
        of.desk.AddScript("mine.pxv", "pink");
        CHECK(of.desk.RunUntil([&] { return isTold(", line 1: Flush \"Color\": \"pink\""); }));
        of.desk.home.Write("mine.pxv", "<PXV Version=\"1.0\"><Comp");
        CHECK(of.desk.RunUntil([&] { return isTold(", line 1: this tag is never closed"); }));
        of.desk.AddScript("mine.pxv", "0x1030E0");
        CHECK(of.desk.RunUntil(
            [&] { return show.Fault().isEmpty() && of.desk.IsShown(DisplayDesk::blue); }));
        CHECK(show.Name() == "mine");
        CHECK_FALSE(show.CanRate());
        show.Choose("Test\\Red");
        CHECK_FALSE(show.IsFile());
        CHECK(show.CanRate());
    });
}
