#include "apps/player/main/PlayerProgram.h"

#include <doctest/doctest.h>

#include <algorithm>

namespace {

// Whether some file below the folder has these very bytes.
bool IsKept(const std::filesystem::path& folder, const std::string& bytes)
{
    const std::filesystem::recursive_directory_iterator files(folder);
    return std::any_of(begin(files), end(files), [&](const auto& entry) {
        return entry.is_regular_file() && BytesOf(entry.path()) == bytes;
    });
}

}

TEST_CASE("Songs that are missing or end too early are passed over")
{
    PlayerProgram player;
    const std::string demo = BytesOf(PXVIS_SOURCE_DIR "/data/demo/pxvis-demo.opus");
    const std::string cut = player.AddFile("cut.opus", demo.substr(0, 30'000));
    const std::string noise = player.AddFile("noise.mp3", std::string(5000, '\xa7'));
    const std::string song = player.AddSong("whole.wav", 300);
    const std::string list = player.AddFile("list.m3u8",
        "gone.mp3\n/nowhere/gone.flac\n" + cut + "\n" + noise + "\ngone.ogg\nwhole.wav\n");
    REQUIRE(player.Start({ list }));
    CHECK(player.WaitUntil([&] { return player.IsPlaying() && player.Title() == "whole"; }));
    CHECK(player.Quit() == 0);
}

TEST_CASE("A song behind hundreds of missing ones is reached")
{
    PlayerProgram player;
    std::string list;
    for (int i = 0; i < 300; ++i)
        list += "gone" + std::to_string(i) + ".mp3\n";
    player.AddSong("song.wav", 300);
    REQUIRE(player.Start({ player.AddFile("list.m3u8", list + "song.wav\n") }));
    CHECK(player.WaitUntil([&] { return player.IsPlaying() && player.Title() == "song"; }));
    CHECK(player.Quit() == 0);
}

TEST_CASE("Damaged files of the user's are kept, and what can be read of them is used")
{
    PlayerProgram player;
    const std::string settings = "<Settings><Key Path=\"Player\"><Item Name=\"Volume\">250</Item>"
                                 "</Key><Key Path=\"Other\"><Item Name=\"A\">1</Ite";
    const std::string library = "SQLite format 3" + std::string(5000, '\x5a');
    const std::string list = player.AddSong("song.wav", 300) + "\n\xff\xfe\x01 no such thing\n";
    player.AddFile("config/pxvis/settings.xml", settings);
    player.AddFile("data/pxvis/library.sqlite", library);
    player.AddFile("data/pxvis/player/playlist.m3u8", list);
    REQUIRE(player.Start());
    CHECK(player.WaitUntil([&] { return player.Title() == "song"; }));
    CHECK(player.Ask("Volume").toDouble() == doctest::Approx(0.25));
    player.Set("Volume", 0.5);
    player.Tell("Play");
    CHECK(player.WaitUntil([&] { return player.IsPlaying(); }));
    CHECK(player.Quit() == 0);
    CHECK(IsKept(player.Home() / "config", settings));
    CHECK(IsKept(player.Home() / "data", library));

    REQUIRE(player.Start());
    CHECK(player.Ask("Volume").toDouble() == doctest::Approx(0.5));
    CHECK(player.Quit() == 0);
}

TEST_CASE("A song goes on when the sound server goes away, and when it comes back")
{
    PlayerProgram player;
    const std::vector<std::string> server { "pulseaudio", "-n", "--daemonize=no",
        "--exit-idle-time=-1", "-L",
        "module-native-protocol-unix auth-anonymous=1 socket=" + player.SoundSocket(), "-L",
        "module-null-sink sink_name=null1" };
    const auto start = [&] {
        auto process = std::make_unique<ChildProcess>(server, player.Home().Path("server-errors"));
        CHECK(player.WaitUntil([&] { return std::filesystem::exists(player.SoundSocket()); }));
        return process;
    };
    const auto goesOn = [&] {
        const double position = player.Position();
        return player.WaitUntil(
            [&] { return player.IsPlaying() && player.Position() > position + 1; });
    };
    auto process = start();
    REQUIRE(player.Start({ player.AddSong("song.wav", 300) }));
    CHECK(goesOn());
    process.reset();
    std::filesystem::remove(player.SoundSocket());
    CHECK(goesOn());
    process = start();
    CHECK(goesOn());
    CHECK(player.Quit() == 0);
}
