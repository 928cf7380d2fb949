#include "TestFolder.h"
#include "apps/pxvis/main/Program.h"
#include "apps/pxvis/main/VideoEvents.h"

#include <doctest/doctest.h>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const std::string song = PXVIS_SOURCE_DIR "/data/demo/pxvis-demo.opus";

std::vector<std::string> Render(const std::string& output, const char* size)
{
    return { "render", song, "-o", output, "--size", size };
}

// Until the file has so many bytes, which tells that pictures are in it; 0: for half a second more.
void WaitForFile(Program& program, const std::string& path, off_t bytes = 0)
{
    struct stat status
    {
    };

    for (int i = 0; i < 6000 && program.IsRunning(); ++i) {
        if (stat(path.c_str(), &status) == 0 && status.st_size >= bytes)
            break;
        usleep(10000);
    }
    if (bytes == 0)
        usleep(500000);
    REQUIRE(program.IsRunning());
}

}

TEST_CASE("The first Ctrl-C ends a render with a whole file, and says where")
{
    for (const std::string kind : { "mp4", "webm" }) {
        const TestFolder folder;
        const TestFolder messages;
        const std::string video = folder.Path("out." + kind);
        Program render(Render(video, "320x180"), { messages.Path("errors") });
        WaitForFile(render, video + ".part", 30'000);
        render.Signal(SIGINT);
        CHECK(render.Wait(60) == 130);
        CHECK(folder.Names() == "out." + kind + " ");
        CHECK(messages.Read("errors").find("pxvis: stopped at ") == 0);
        CHECK(messages.Read("errors").find('\n') == messages.Read("errors").size() - 1);
        const VideoEvents events(video);
        CHECK(events.fault == "");
        CHECK(events.pictures > 0);
        CHECK(std::abs(events.soundEnd - static_cast<double>(events.pictures) / 60) < 0.03);
    }
}

TEST_CASE("Numbered pictures that Ctrl-C leaves are whole")
{
    const TestFolder folder;
    const TestFolder messages;
    Program render(Render(folder.Path("%04d.png"), "320x180"), { messages.Path("errors") });
    WaitForFile(render, folder.Path("0003.png"));
    render.Signal(SIGINT);
    CHECK(render.Wait(60) == 130);
    for (const auto& file : std::filesystem::directory_iterator(folder.Path("."))) {
        const std::string bytes = folder.Read(file.path().filename());
        CHECK(file.path().extension() == ".png");
        CHECK(bytes.find("IEND") == bytes.size() - 8);
    }
}

TEST_CASE("The second Ctrl-C leaves nothing")
{
    const TestFolder folder;
    const TestFolder messages;
    const std::string video = folder.Path("out.mp4");
    Program render(Render(video, "1920x1080"), { messages.Path("errors") });
    WaitForFile(render, video + ".part");
    render.Signal(SIGINT);
    usleep(20000); // two at once count as one
    render.Signal(SIGINT);
    CHECK(render.Wait(60) == 130);
    CHECK(folder.Names().empty());
}

TEST_CASE("Ctrl-C ends a check for flashes, which has told what it found so far")
{
    const TestFolder folder;
    const std::string strobe = PXVIS_SOURCE_DIR "/tests/data/flash/strobe-8-a-second.pxv";
    Program check(
        { "check", "--flash", strobe, strobe }, { folder.Path("errors"), folder.Path("found") });
    WaitForFile(check, folder.Path("found"), 1);
    usleep(50000);
    check.Signal(SIGINT);
    CHECK(check.Wait(60) == 130);
    CHECK(folder.Read("found").find(strobe + ": 0:00.") == 0);
    CHECK(folder.Read("errors").find("pxvis: " + strobe + ": stopped at ") == 0);
}

TEST_CASE("What a killed render left is in nobody's way")
{
    const TestFolder folder;
    const TestFolder messages;
    const std::string video = folder.Path("out.mp4");
    auto options = Render(video, "64x36");
    {
        Program render(options, { messages.Path("errors") });
        WaitForFile(render, video + ".part");
        Program second(options, { messages.Path("errors2") });
        CHECK(second.Wait(60) == 1);
        CHECK(
            messages.Read("errors2").find("being written by another process") != std::string::npos);
        render.Signal(SIGKILL);
        CHECK(render.Wait(60) == -SIGKILL);
    }
    CHECK(folder.Names() == "out.mp4.part ");
    options.insert(options.end(), { "--to", "0.5" });
    Program render(options, { messages.Path("errors") });
    CHECK(render.Wait(60) == 0);
    CHECK(folder.Names() == "out.mp4 ");
}

TEST_CASE("bench tells an object a line of what has the name, and that nothing has it")
{
    const ProgramResult found = RunProgram({ "bench", "columns/product/32768", "--json" }, "");
    CHECK(found.status == 0);
    CHECK(found.output.find("{\"name\":\"columns/product/32768\",\"threads\":1,\"ns\":") == 0);
    CHECK(found.output.find(",\"unit\":\"eval\"}\n") == found.output.size() - 16);
    const ProgramResult missing = RunProgram({ "bench", "columns/nothing" }, "");
    CHECK(missing.status == 1);
    CHECK(missing.output.empty());
    CHECK(missing.errors.find("columns/nothing") != std::string::npos);
}

TEST_CASE("A reader that goes away ends what is written for it, in silence")
{
    const TestFolder folder;
    const std::string pipe = folder.Path("pipe");
    REQUIRE(mkfifo(pipe.c_str(), 0600) == 0);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    Program analyze({ "analyze", song }, { folder.Path("errors"), pipe });
    char byte = 0;
    for (int i = 0; i < 2000 && analyze.IsRunning() && read(reader, &byte, 1) != 1; ++i)
        usleep(10000);
    close(reader);
    CHECK(analyze.Wait(60) == -SIGPIPE);
    CHECK(folder.Read("errors").empty());
}

TEST_CASE("Moments are seconds or clock times, and what else they can't be is told")
{
    const auto run = [](std::vector<std::string> options) {
        std::vector<std::string> arguments = { "analyze", song };
        arguments.insert(arguments.end(), options.begin(), options.end());
        return RunProgram(arguments, "");
    };
    const ProgramResult seconds = run({ "--from", "1.5", "--to", "2" });
    CHECK(seconds.output.size() == 30u * 3088);
    CHECK(run({ "--from", "0:01.5", "--to", "0:00:02" }).output == seconds.output);
    for (const char* text : { "1,5", "1:70", ":5", "1:2:3:4", "nan", "-1", "", "1e3" }) {
        const ProgramResult refused = run({ "--from", text });
        CHECK(refused.status == 2);
        CHECK(refused.errors.find("is not a number of seconds") != std::string::npos);
    }
}
