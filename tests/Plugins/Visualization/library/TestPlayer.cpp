#include "Plugins/Visualization/library/PlayerWindow.h"

#include <doctest/doctest.h>

#include <array>
#include <chrono>
#include <cstdlib>

namespace {

constexpr uint32_t red = 0xe02010;
constexpr uint32_t blue = 0x1030e0;

// The middle of each quarter, row by row.
std::array<uint32_t, 4> QuartersOf(const ScreenPixels& pixels)
{
    const int width = pixels.GetWidth();
    const int height = pixels.GetHeight();
    return { pixels.At(width / 4, height / 4), pixels.At(width * 3 / 4, height / 4),
        pixels.At(width / 4, height * 3 / 4), pixels.At(width * 3 / 4, height * 3 / 4) };
}

const std::string quarters = FlushPiece("0xE02010", "0;0;.5;.5")
    + FlushPiece("0x1030E0", ".5;0;1;.5") + FlushPiece("0xF0F000", "0;.5;.5;1")
    + FlushPiece("0x204060", ".5;.5;1;1");

constexpr std::array<uint32_t, 4> quarterColors { 0xe02010, 0x1030e0, 0xf0f000, 0x204060 };

}

TEST_CASE(
    "Each draw method shows the script upright over the whole window, at every size and quality")
{
    for (const char* method : { "0", "1" }) {
        INFO("Method ", std::string(method));
        PlayerWindow player(640, 400);
        player.AddScript("Quarters.pxv", quarters);
        player.Set("Draw Method", method);
        player.Set("Current Script", "");
        REQUIRE(player.Open() != 0);
        player.visualization->SetProperty(u"Current Mode", u"Quarters");
        const auto isShown = [&] { return QuartersOf(player.Pixels()) == quarterColors; };
        CHECK(player.RunUntil(isShown));
        player.Resize(1000, 700); // more than the quality's pixels
        CHECK(player.RunUntil(isShown));
        player.Resize(90, 40);
        CHECK(player.RunUntil(isShown));
        player.Resize(1000, 700);
        for (const int32_t id : { 1011, 1015 }) {
            const VisMenuCommand command { id, u"" };
            CHECK(player.visualization->OnMenuCommand(&command));
            player.Run(200);
            CHECK(player.RunUntil(isShown));
        }
        // Nothing of the window beneath is left at its edges.
        player.Run(100);
        const ScreenPixels pixels = player.Pixels();
        CHECK(pixels.Count(0x00ff00, 0, 0, 1000, 700) == 0);
    }
}

TEST_CASE("The mode can be changed, is kept, and all scripts of a folder come in turns")
{
    PlayerWindow player(320, 200);
    player.AddScript("Test/Red.pxv", FlushPiece("0xE02010"));
    player.AddScript("Test/Blue.pxv", FlushPiece("0x1030E0"));
    player.Set("Script Cycle MS", "1"); // no shorter than a second
    REQUIRE(player.Open() != 0);
    IOQVisualization& visualization = *player.visualization;
    CHECK(visualization.SetProperty(u"Current Mode", u"Test\\Red"));
    CHECK(player.RunUntil([&] { return player.Middle() == red; }));
    CHECK(visualization.SetProperty(u"Current Mode", u"Test\\Blue"));
    CHECK(player.RunUntil([&] { return player.Middle() == blue; }));
    CHECK(PropertyOf(visualization, u"Current Mode") == u"Test\\Blue");
    player.Run(1500); // a script alone stays
    CHECK(player.Middle() == blue);

    CHECK(visualization.SetProperty(u"Current Mode", u"Test\\Cycle All"));
    for (int turn = 0; turn < 2; ++turn) {
        CHECK(player.RunUntil([&] { return player.Middle() == red; }));
        CHECK(player.RunUntil([&] { return player.Middle() == blue; }));
    }
    CHECK(player.host.dataGiven > 4); // new data with each script
}

TEST_CASE("A script file from anywhere is shown, followed through its editor's doings, and ended")
{
    const TestFolder folder;
    const auto write = [&](const char* name, const char* color) {
        folder.Write(name, "<PXV Version=\"1.0\">" + FlushPiece(color) + "</PXV>");
    };
    write("mine.pxv", "0xE02010");
    const std::string path = folder.Path("mine.pxv");
    const std::u16string file(path.begin(), path.end());
    PlayerWindow player(320, 200);
    player.AddScript("Test/Green.pxv", FlushPiece("0x40C040"));
    player.AddScript("Test/Yellow.pxv", FlushPiece("0xF0F000"));
    player.Set("Script Cycle MS", "1000");
    player.Set("Current Script", "");
    const auto shows
        = [&](uint32_t color) { return player.RunUntil([&] { return player.Middle() == color; }); };
    const auto showsMode = [&] { return shows(0x40c040) && shows(0xf0f000); }; // in turns
    REQUIRE(player.Open() != 0);
    IOQVisualization& visualization = *player.visualization;
    REQUIRE(visualization.SetProperty(u"Script File", file.c_str())); // before the first paint
    CHECK(shows(red));
    visualization.SetProperty(u"Current Mode", u"Test\\Cycle All");
    CHECK(showsMode());
    player.host.onRefresh = [&] { visualization.SetProperty(u"Script File", file.c_str()); };
    CHECK(shows(red)); // with the next turn's data
    player.host.onRefresh = nullptr;
    player.Run(1500); // the turns have stopped
    CHECK(player.Middle() == red);

    write("new", "0x1030E0");
    std::filesystem::rename(folder / "new", path);
    CHECK(shows(blue));
    std::filesystem::rename(path, folder / "aside");
    CHECK(shows(0));
    std::filesystem::rename(folder / "aside", path); // with the date that it had
    CHECK(shows(blue));
    folder.Write("mine.pxv", "half a ");
    CHECK(shows(0));
    CHECK_FALSE(visualization.SetProperty(u"Script File", file.c_str()));
    CHECK(PropertyOf(visualization, u"Script File") == file);
    write("mine.pxv", "0xE02010");
    CHECK(shows(red));
    CHECK(visualization.CreateWnd(player.GetWindow(), 0) != 0);
    player.Run(200);
    CHECK(shows(red));
    CHECK(visualization.SetProperty(u"Script File", u""));
    CHECK(showsMode());
}

TEST_CASE(
    "A host may choose another mode, tick and make the window anew while it is asked for data")
{
    PlayerWindow player(320, 200);
    player.AddScript("Red.pxv", FlushPiece("0xE02010"));
    player.AddScript("Blue.pxv", FlushPiece("0x1030E0"));
    int calls = 0;
    player.host.onRefresh = [&] {
        IOQVisualization& visualization = *player.visualization;
        CHECK(visualization.SetProperty(u"Process Events", u"5"));
        if (++calls == 20) {
            CHECK(visualization.SetProperty(u"Current Mode", u"Blue"));
            CHECK(PropertyOf(visualization, u"Current Mode") == u"Blue");
        }
        if (calls == 40)
            CHECK(visualization.CreateWnd(player.GetWindow(), 0) != 0);
        // The same while nothing is painted, for lack of anything new.
        const bool isPaused = calls > 80 && calls < 140;
        player.host.audio->refreshResult = isPaused ? 1 : 0;
        if (calls == 130)
            CHECK(visualization.SetProperty(u"Current Mode", u"Red"));
        if (calls == 135)
            CHECK(visualization.CreateWnd(player.GetWindow(), 0) != 0);
    };
    REQUIRE(player.Open() != 0);
    player.visualization->SetProperty(u"Current Mode", u"Red");
    CHECK(player.RunUntil([&] { return player.Middle() == red; }));
    CHECK(player.RunUntil([&] { return player.Middle() == blue; }));
    CHECK(player.RunUntil([&] { return calls > 125; }));
    CHECK(player.Middle() == blue);
    CHECK(player.RunUntil([&] { return calls > 150; }));
    CHECK(player.RunUntil([&] { return player.Middle() == red; }));
}

TEST_CASE("While the host has nothing new the picture stays, asked for seldom, and then goes on")
{
    for (const char* method : { "0", "1" }) {
        INFO("Method ", std::string(method));
        PlayerWindow player(320, 200);
        player.AddScript("Red.pxv", FlushPiece("0xE02010"));
        player.AddScript("Blue.pxv", FlushPiece("0x1030E0"));
        player.Set("Draw Method", method);
        player.Set("Current Script", "");
        bool isPaused = false;
        int asked = 0;
        player.host.onRefresh = [&] {
            ++asked;
            player.host.audio->refreshResult = isPaused ? 1 : 0;
        };
        REQUIRE(player.Open() != 0);
        IOQVisualization& visualization = *player.visualization;
        visualization.SetProperty(u"Current Mode", u"Red");
        const auto shows = [&](uint32_t color, int width, int height) {
            return player.RunUntil([&] {
                return player.Pixels().Count(color, 0, 0, width, height) == width * height;
            });
        };
        CHECK(shows(red, 320, 200));
        isPaused = true;
        player.Run(800);
        // How long it takes to be asked eight times: ten times a second while it rests.
        const auto timeOfEight = [&] {
            asked = 0;
            const auto start = std::chrono::steady_clock::now();
            CHECK(player.RunUntil([&] { return asked >= 8; }));
            return std::chrono::steady_clock::now() - start;
        };
        CHECK(timeOfEight() > std::chrono::milliseconds(600));
        player.CoverAndUncover();
        CHECK(shows(red, 320, 200));
        player.Resize(500, 300);
        CHECK(shows(red, 500, 300));
        player.Run(1000); // the engine has its new size, and rests again
        CHECK(shows(red, 500, 300));
        visualization.SetProperty(u"Current Mode", u"Blue");
        player.Run(300);
        CHECK(shows(red, 500, 300));
        player.CoverAndUncover();
        CHECK(shows(red, 500, 300));
        isPaused = false;
        CHECK(player.RunUntil([&] { return player.Middle() == blue; }));
        if (*method == '1') // the other one takes its time
            CHECK(player.RunUntil([&] { return timeOfEight() < std::chrono::milliseconds(500); }));
    }
}

TEST_CASE("Flashing light is damped unless the user wants it as it is")
{
    for (const char* limit : { "1", "0" }) {
        INFO("Limit ", std::string(limit));
        PlayerWindow player(320, 200);
        player.AddScript("Strobe.pxv",
            "<Component GUID=\"36267E6D-70E1-435e-9E2A-428EEA2D3C7E\" Name=\"Flush\"><Properties>"
            "<AlternatingColors>0.1;0xFFFFFF;0x000000</AlternatingColors></Properties></"
            "Component>");
        player.Set("Flash Limit", limit);
        player.Set("Draw Method", "0");
        REQUIRE(player.Open() != 0);
        player.visualization->SetProperty(u"Current Mode", u"Strobe");
        player.Run(1500);
        // How often the picture goes from light to dark or back by half of all there is.
        int swings = 0;
        int from = 0;
        player.RunUntil(
            [&] {
                const int light = static_cast<int>(player.Middle() & 255);
                const bool isSwing = std::abs(light - from) >= 128;
                swings += isSwing;
                from = isSwing ? light : from;
                return swings > 12;
            },
            *limit == '1' ? 3000 : 30000);
        if (*limit == '1')
            CHECK(swings < 6);
        else
            CHECK(swings > 12);
    }
}

TEST_CASE("Without a host, data or a script the window is there and black")
{
    SUBCASE("no data")
    {
        PlayerWindow player(320, 200);
        player.AddScript("Red.pxv", FlushPiece("0xE02010"));
        player.host.givesData = false;
        REQUIRE(player.Open() != 0);
        player.visualization->SetProperty(u"Current Mode", u"Red");
        CHECK(player.RunUntil([&] { return player.Middle() == 0; }));
        player.host.givesData = true; // it comes later
        CHECK(player.RunUntil([&] { return player.Middle() == red; }));
        // Nothing new: the picture stays.
        player.host.audio->refreshResult = -1;
        player.Run(200);
        CHECK(player.Middle() == red);
    }
    SUBCASE("no script")
    {
        PlayerWindow player(320, 200);
        REQUIRE(player.Open() != 0);
        player.visualization->SetProperty(u"Current Mode", u"Later");
        CHECK(player.RunUntil([&] { return player.Middle() == 0; }));
        player.AddScript("Later.pxv", FlushPiece("0x1030E0"));
        CHECK(player.RunUntil([&] { return player.Middle() == blue; }));
    }
    SUBCASE("no connection")
    {
        PlayerWindow player(320, 200);
        player.host.refusesConnection = true;
        REQUIRE(player.Open() != 0);
        CHECK(player.RunUntil([&] { return player.Middle() == 0; }));
    }
}

TEST_CASE("A parent that isn't there gives no window, and one that goes takes the window along")
{
    PlayerWindow player(320, 200);
    player.AddScript("Red.pxv", FlushPiece("0xE02010"));
    REQUIRE(player.Open() != 0);
    player.visualization->SetProperty(u"Current Mode", u"Red");
    CHECK(player.visualization->CreateWnd(0, 0) == 0);
    CHECK(player.visualization->CreateWnd(0x7fffffff, 0) == 0);
    REQUIRE(player.visualization->CreateWnd(player.GetWindow(), 0) != 0);
    CHECK(player.RunUntil([&] { return player.Middle() == red; }));
    player.DestroyWindow();
    player.Run(500);
    CHECK(PropertyOf(*player.visualization, u"Current Mode") == u"Red");
    CHECK(player.visualization->SetProperty(u"Current Mode", u"Cycle All"));
    player.Run(200);
}
