#include "TestFolder.h"
#include "TestVariable.h"
#include "apps/pxvis/main/Program.h"

#include <doctest/doctest.h>

#include <csignal>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

const std::string goodScript
    = "<PXV Version=\"1.0\"><Component GUID="
      "\"36267E6D-70E1-435e-9E2A-428EEA2D3C7E\" Name=\"Flush\"><Properties/></Component></PXV>";
const std::string badScript = "<PXV Version=\"1.0\"><Component GUID=\"nobody's\"/></PXV>";

// A copy of the program, with a script in place of the player beside it.
struct Installation
{
    Installation()
    {
        fs::copy_file(PXVIS_BINARY_DIR "/bin/pxvis", folder / "pxvis");
        folder.Write("song.opus", "");
        folder.Write("my.pxv", badScript);
        WritePlayer(folder);
    }

    // It writes down what it is told, and that it ends.
    static void WritePlayer(const TestFolder& place)
    {
        place.Write("pxvis-player",
            "#!/bin/sh\ncd \"${0%/*}\"\ntrap 'echo INT >> ended; exit 7' INT\n"
            "trap 'echo TERM >> ended; exit 8' TERM\n"
            "for word; do echo \"$word\" >> words; done\necho $$ > process\n"
            "while :; do sleep 0.05; done\n");
        fs::permissions(place / "pxvis-player", fs::perms::owner_all);
    }

    Program Start(const std::vector<std::string>& options) const
    {
        std::vector<std::string> arguments { "play" };
        arguments.insert(arguments.end(), options.begin(), options.end());
        return Program(arguments, { folder.Path("errors") }, Leaks::Ignored, folder.Path("pxvis"));
    }

    bool HasSoon(const char* file, const std::string& text) const
    {
        for (int i = 0; i < 2000 && folder.Read(file).find(text) == std::string::npos; ++i)
            usleep(5000);
        return folder.Read(file).find(text) != std::string::npos;
    }

    TestFolder folder;
    TestVariable display { "DISPLAY", ":0" };
};

}

TEST_CASE("A script is played with its faults told behind each save, until Ctrl-C ends the player")
{
    const Installation place;
    const std::string script = place.folder.Path("my.pxv");
    const std::string song = place.folder.Path("song.opus");
    Program play = place.Start({ "--script", script, song });
    CHECK(place.HasSoon("errors", script + ":1:"));
    CHECK(place.HasSoon("process", "\n"));
    CHECK(place.folder.Read("words") == "--script\n" + script + "\n--play\n" + song + "\n");
    place.folder.Write("new", goodScript);
    fs::rename(place.folder / "new", script);
    CHECK(place.HasSoon("errors", script + ": no faults\n"));
    fs::remove(script);
    CHECK(place.HasSoon("errors", script + ": no such script\n"));
    place.folder.Write("my.pxv", "half a ");
    CHECK(place.HasSoon("errors", "no such script\n" + script + ":1:"));
    play.Signal(SIGINT);
    CHECK(play.Wait(20) == 7);
    CHECK(place.folder.Read("ended") == "INT\n");
}

TEST_CASE("The player doesn't outlive who started it, and how it ends is told")
{
    const Installation place;
    {
        Program play = place.Start({ place.folder.Path("song.opus"), place.folder.Path("") });
        CHECK(place.HasSoon("process", "\n"));
        CHECK(place.folder.Read("words").starts_with("--play\n"));
        play.Signal(SIGKILL);
        CHECK(place.HasSoon("ended", "TERM\n"));
    }
    fs::remove(place.folder / "pxvis-player");
    place.folder.Write("pxvis-player", "#!/bin/sh\nkill -9 $$\n");
    fs::permissions(place.folder / "pxvis-player", fs::perms::owner_all);
    CHECK(place.Start({}).Wait(20) == 128 + SIGKILL);
    place.folder.Write("pxvis-player", "#!/nonexistent\n");
    CHECK(place.Start({}).Wait(20) == 1);
    CHECK(
        place.folder.Read("errors").find("pxvis-player: can't be started: ") != std::string::npos);

    fs::remove(place.folder / "pxvis-player");
    const TestFolder other;
    Installation::WritePlayer(other);
    const TestVariable path("PATH", ("." + (":" + other.Path("")) + ":/usr/bin:/bin").c_str());
    Program play = place.Start({ "--script", place.folder.Path("my.pxv") });
    for (int i = 0; i < 2000 && other.Read("process").empty(); ++i)
        usleep(5000);
    CHECK(other.Read("words").ends_with("my.pxv\n--listen\n"));
    play.Signal(SIGTERM);
    CHECK(play.Wait(20) == 8);
}

TEST_CASE("What is missing is told in one line, and nothing is started")
{
    const Installation place;
    const auto refuses = [&](const std::vector<std::string>& options, const std::string& text) {
        CHECK(place.Start(options).Wait(20) == 1);
        const std::string errors = place.folder.Read("errors");
        CHECK(errors == "pxvis: " + text + "\n");
    };
    refuses({ "nowhere.opus" }, "nowhere.opus: no such file");
    refuses({ "--script", "nowhere.pxv" },
        "nowhere.pxv: no such script; pxvis list scripts tells the names");
    refuses({ "--script", place.folder.Path("") },
        place.folder.Path("") + ": is a folder, not a script");
    {
        const TestVariable none("DISPLAY", "");
        const TestVariable neither("WAYLAND_DISPLAY", "");
        refuses({}, "there is no display for the player to show anything on");
    }
    CHECK(place.folder.Read("process") == "");
    fs::remove(place.folder / "pxvis-player");
    const TestVariable path("PATH", "/nonexistent");
    refuses({}, "the player, pxvis-player, isn't installed");
}
