#include "apps/player/main/DragSource.h"
#include "apps/player/main/PlayerProgram.h"

#include <doctest/doctest.h>

namespace {

constexpr uint32_t red = PlayerProgram::red;
constexpr uint32_t blue = PlayerProgram::blue;
constexpr double most = 0.9; // of the screen: the song's name may be shown over the picture
constexpr double some = 0.1; // of the screen: the picture beside all else in the window

// In the menu, counted from its end, where those are that lie in no folder.
void ChooseScript(const PlayerProgram& player, int fromEnd)
{
    player.Press("alt+l");
    player.Press("Return");
    for (int i = 0; i < fromEnd; ++i)
        player.Press("Up");
    player.Press("Return");
}

}

TEST_CASE("The demo song starts with moving pictures and is steered over the bus")
{
    PlayerProgram player;
    REQUIRE(player.Start({ PXVIS_SOURCE_DIR "/data/demo/pxvis-demo.opus" }));
    CHECK(player.WaitUntil([&] { return player.IsPlaying() && player.Position() > 0.5; }));
    CHECK(player.WaitUntil([&] { return player.IsMoving(); }));
    CHECK(player.Title() != "");

    player.Tell("Pause");
    CHECK(player.WaitUntil([&] { return !player.IsPlaying(); }));
    const double position = player.Position();
    player.Tell("Seek", { qint64(2'000'000) });
    CHECK(player.WaitUntil(
        [&] { return player.Position() == doctest::Approx(position + 2).epsilon(0.1); }));
    player.Tell("PlayPause");
    CHECK(player.WaitUntil([&] { return player.Position() > position + 3; }));
    CHECK(player.Quit() == 0);
}

TEST_CASE("Scripts are chosen in the menu, and the picture fills the screen and comes back")
{
    PlayerProgram player;
    const std::string script = player.AddScript("00 Red", red);
    player.AddScript("01 Blue", blue);
    player.WriteSettings(script);
    REQUIRE(player.Start({ player.AddSong("song.wav", 300) }));
    REQUIRE(player.WaitUntil([&] { return player.PartOf(red) > some; }));

    ChooseScript(player, 1);
    REQUIRE(player.WaitUntil([&] { return player.PartOf(blue) > some; }));
    ChooseScript(player, 2);
    REQUIRE(player.WaitUntil([&] { return player.PartOf(red) > some; }));

    const PlayerProgram::Window window = player.ActiveWindow();
    const auto isWindow = [&](uint32_t color) {
        return player.ActiveWindow().id == window.id && player.PartOf(color) > some
            && player.PartOf(color) < most;
    };
    player.Press("F11");
    REQUIRE(player.WaitUntil([&] { return player.PartOf(red) > most; }));
    player.AddScript("00 Red", blue); // a picture that lives follows its script's file
    REQUIRE(player.WaitUntil([&] { return player.PartOf(blue) > most; }));
    player.Press("F11");
    REQUIRE(player.WaitUntil([&] { return isWindow(blue); }));
    player.AddScript("00 Red", red);
    REQUIRE(player.WaitUntil([&] { return isWindow(red); }));

    const std::string x = std::to_string(window.left + window.width / 3);
    const std::string y = std::to_string(window.top + window.height / 2);
    player.Use({ "mousemove", x, y, "click", "--repeat", "2", "--delay", "50", "1" });
    REQUIRE(player.WaitUntil([&] { return player.PartOf(red) > most; }));
    player.Press("Escape");
    REQUIRE(player.WaitUntil([&] { return isWindow(red); }));
    CHECK(player.Quit() == 0);
}

TEST_CASE("Files are played that are dropped on the window or opened with the player again")
{
    PlayerProgram player;
    const std::string first = player.AddSong("a song.wav", 300);
    player.AddSong("another.wav", 300);
    REQUIRE(player.Start());
    const auto drop = [&](const std::string& uris) {
        const PlayerProgram::Window window = player.ActiveWindow();
        return DragSource(player.Display().GetName(), uris)
            .DropOn(window.id, window.left + window.width / 3, window.top + window.height / 2);
    };
    const std::string folder = "file://" + player.Home().Path("");
    CHECK(drop(folder + "a%20song.wav\r\n"));
    CHECK(player.WaitUntil([&] { return player.IsPlaying() && player.Title() == "a song"; }));
    CHECK(drop(folder + "missing.wav\r\n" + folder + "another.wav\r\n"));
    CHECK(player.WaitUntil([&] { return player.IsPlaying() && player.Title() == "another"; }));
    ChildProcess second({ PXVIS_BINARY_DIR "/bin/pxvis-player", first });
    CHECK(second.Wait(60) == 0);
    CHECK(player.WaitUntil([&] { return player.IsPlaying() && player.Title() == "a song"; }));
    CHECK(player.Quit() == 0);
}

TEST_CASE("All is as it was when the player is started again")
{
    PlayerProgram player;
    player.AddScript("00 Red", red);
    player.WriteSettings(player.AddScript("01 Blue", blue));
    REQUIRE(player.Start({ player.AddSong("one.wav", 300), player.AddSong("two.wav", 300) }));
    CHECK(player.WaitUntil([&] { return player.IsPlaying() && player.PartOf(blue) > some; }));
    ChooseScript(player, 2);
    REQUIRE(player.WaitUntil([&] { return player.PartOf(red) > some; }));
    player.Tell("Next");
    CHECK(player.WaitUntil([&] { return player.IsPlaying() && player.Title() == "two"; }));
    player.Set("Volume", 0.25);
    player.Set("LoopStatus", "Playlist");
    player.Tell("Pause");
    CHECK(player.WaitUntil([&] { return player.Ask("CanSeek").toBool(); }));
    player.Tell("Seek", { qint64(100'000'000) });
    CHECK(player.WaitUntil([&] { return player.Position() > 99; }));
    player.Use({ "windowsize", std::to_string(player.ActiveWindow().id), "900", "640" });
    CHECK(player.WaitUntil([&] { return player.ActiveWindow().width == 900; }));
    player.Press("Right"); // comes behind the size, so that the player knows that by then
    CHECK(player.WaitUntil([&] { return player.Position() > 104; }));
    CHECK(player.Quit() == 0);

    REQUIRE(player.Start());
    CHECK(player.WaitUntil([&] { return player.Title() == "two" && player.Position() > 104; }));
    REQUIRE(player.WaitUntil([&] { return player.PartOf(red) > some; }));
    CHECK(!player.IsPlaying());
    CHECK(player.Position() < 115);
    CHECK(player.Ask("Volume").toDouble() == doctest::Approx(0.25));
    CHECK(player.Ask("LoopStatus") == "Playlist");
    const PlayerProgram::Window window = player.ActiveWindow();
    CHECK(window.width == 900);
    CHECK(window.height == 640);
    player.Tell("Previous"); // the song's beginning
    CHECK(player.WaitUntil([&] { return player.Position() < 1; }));
    player.Tell("Previous");
    CHECK(player.WaitUntil([&] { return player.Title() == "one"; }));
    CHECK(player.Quit() == 0);
}
