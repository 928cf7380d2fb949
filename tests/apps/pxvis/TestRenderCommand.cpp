#include "VisTesting.h"
#include "apps/pxvis/RenderCommand.h"
#include "host/SongFile.h"

#include <doctest/doctest.h>

#include <sstream>

namespace {

namespace fs = std::filesystem;

pxvis::RenderOptions Options(const std::string& output)
{
    pxvis::RenderOptions options;
    options.song = PXVIS_SOURCE_DIR "/data/demo/pxvis-demo.opus";
    options.output = output;
    options.width = 64;
    options.height = 36;
    options.from = 7;
    options.to = 8.5;
    options.level = pxvis::host::EncodeLevel::Draft;
    return options;
}

// The status, with the errors checked to be one line if there is a failure.
int Render(const pxvis::RenderOptions& options)
{
    std::ostringstream errors;
    const int status = pxvis::RunRender(options, errors);
    const std::string text = errors.str();
    INFO(text);
    CHECK((status == 0 ? text.empty() : !text.empty() && text.find('\n') == text.size() - 1));
    return status;
}

}

TEST_CASE("A part of a song becomes a video, and an existing one is replaced only when told to")
{
    const TestFolder folder;
    pxvis::RenderOptions options = Options(folder.Path("a.mp4"));
    CHECK(Render(options) == 0);
    const std::string video = BytesOf(options.output);
    CHECK(video.size() > 2000);
    CHECK(video.substr(4, 4) == "ftyp");
    CHECK(folder.Count() == 1);

    folder.Write("a.mp4", "the user's own");
    CHECK(Render(options) == 1);
    CHECK(BytesOf(options.output) == "the user's own");
    options.replace = true;
    options.frameRate = { 30000, 1001 };
    options.pictureScale = 0.5;
    CHECK(Render(options) == 0);
    CHECK(BytesOf(options.output).substr(4, 4) == "ftyp");
    CHECK(folder.Count() == 1);
}

TEST_CASE("A song or script is never replaced by what is made of it, by whatever name or force")
{
    const TestFolder folder;
    fs::copy_file(Options("").song, folder / "song.mp4");
    fs::create_hard_link(folder / "song.mp4", folder / "name.webm");
    fs::create_symlink("song.mp4", folder / "link.png");
    fs::create_symlink("song.mp4", folder / "a.mp4.part");
    fs::copy_file(folder / "song.mp4", folder / "3.png");
    const std::string song = BytesOf(folder.Path("song.mp4"));
    const auto refuses = [&](const char* name, const char* input, bool isScript) {
        pxvis::RenderOptions options = Options(folder.Path(name));
        (isScript ? options.script : options.song) = folder.Path(input);
        options.replace = true;
        CHECK(Render(options) == (std::string(name) == "%01d.png" ? 1 : 2));
        CHECK(BytesOf(folder.Path(input)) == song);
    };
    for (const char* name : { "song.mp4", "name.webm", "link.png", "a.mp4" })
        refuses(name, "song.mp4", false);
    refuses("%01d.png", "3.png", false);
    refuses("name.webm", "song.mp4", true);
}

TEST_CASE("A single picture is the engine's at that moment, at the size asked for")
{
    const TestFolder folder;
    pxvis::RenderOptions options = Options(folder.Path("a.png"));
    options.at = 8.2;
    CHECK(Render(options) == 0);
    const std::string picture = BytesOf(options.output);
    CHECK(picture.substr(1, 3) == "PNG");
    CHECK(picture.substr(16, 8) == std::string("\0\0\0\x40\0\0\0\x24", 8));
    CHECK(Render(options) == 1); // exists
    options.output = folder.Path("50% b.png"); // no numbered pictures
    options.pictureScale = 0.5;
    CHECK(Render(options) == 0);
    CHECK(BytesOf(options.output).substr(16, 8) == picture.substr(16, 8));
    options.output = folder.Path("c.png");
    options.seeded = true;
    options.seed = 7;
    options.pictureScale = 1;
    CHECK(Render(options) == 0);
    options.at = 9;
    options.replace = true;
    CHECK(Render(options) == 2); // behind --to
    CHECK(folder.Count() == 3);
}

TEST_CASE("What can't be done leaves nothing behind and says why in one line")
{
    const TestFolder folder;
    const TestFile text("song.mp3", "not music at all");
    const TestFile brokenScript("broken.pxv", "<PXV Version=\"1.0\"><Layer>");
    const auto gives = [&](int status, auto change) {
        pxvis::RenderOptions options = Options(folder.Path("out.mp4"));
        change(options);
        CHECK(Render(options) == status);
        CHECK(folder.Count() == 0);
    };
    const auto fails = [&](auto change) { gives(1, change); };
    const auto isWrongUsage = [&](auto change) { gives(2, change); };
    fails([](auto& options) { options.song = "/nowhere.mp3"; });
    fails([](auto& options) { options.song = "/tmp"; });
    fails([](auto& options) { options.song = "/nowhere\n\x1B[31m.mp3"; }); // still one line
    fails([&](auto& options) { options.song = text.Path(); });
    fails([&](auto& options) { options.script = brokenScript.Path(); });
    fails([](auto& options) { options.script = "No Such Script"; });
    fails([](auto& options) { options.output = "/nowhere/out.mp4"; });
    fails([](auto& options) { options.output = "/nowhere/%05d.png"; });
    fails([&](auto& options) {
        options.output = folder.Path("out.png");
        options.to = -1;
        options.at = 1e6;
    });
    for (const char* name : { "out.mp4", "out.webm", "%05d.png" })
        fails([&](auto& options) {
            options.output = folder.Path(name);
            options.from = 4000;
            options.to = -1;
        });

    isWrongUsage([](auto& options) { options.width = 0; });
    isWrongUsage([](auto& options) { options.width = 100000; });
    isWrongUsage([](auto& options) { options.width = 63; });
    isWrongUsage([](auto& options) { options.height = 14; });
    isWrongUsage([](auto& options) { options.pictureScale = 0.1; });
    isWrongUsage([](auto& options) { options.at = 8; });
    isWrongUsage([](auto& options) { options.to = options.from; });
    isWrongUsage([&](auto& options) { options.output = folder.Path("out.avi"); });
    isWrongUsage([&](auto& options) {
        options.output = folder.Path("out.webm");
        options.sound = pxvis::host::SoundCoding::Copy;
    });
    isWrongUsage([&](auto& options) {
        options.output = folder.Path("out.png");
        options.width = 100000;
        options.pictureScale = 0.05;
    });
    for (const char* name :
        { "%d.png", "%5d.png", "%05s.png", "%%.png", "%03d%03d.png", "%00d.png", "%010d.png" })
        isWrongUsage([&](auto& options) { options.output = folder.Path(name); });
}

TEST_CASE("Numbered pictures are those of a video, and none is replaced unless told to")
{
    const TestFolder folder;
    pxvis::RenderOptions options = Options(folder.Path("f-%02d.png"));
    options.to = 7.2;
    options.frameRate = { 30, 1 };
    CHECK(Render(options) == 0);
    CHECK(folder.Count() == 6);
    pxvis::RenderOptions single = Options(folder.Path("single.png"));
    single.at = 7 + 5.1 / 30;
    CHECK(Render(single) == 0);
    CHECK(BytesOf(folder.Path("f-06.png")) == BytesOf(single.output));
    CHECK(BytesOf(folder.Path("f-01.png")) != BytesOf(single.output));

    CHECK(Render(options) == 1);
    fs::remove(folder.Path("f-01.png"));
    folder.Write("f-03.png", "the user's own");
    CHECK(Render(options) == 1);
    CHECK(BytesOf(folder.Path("f-03.png")) == "the user's own");
    CHECK(folder.Count() == 7);
    options.replace = true;
    CHECK(Render(options) == 0);
    CHECK(BytesOf(folder.Path("f-03.png")).substr(1, 3) == "PNG");
}

TEST_CASE("A WebM file is made of a part of a song")
{
    const TestFolder folder;
    const pxvis::RenderOptions options = Options(folder.Path("a.WebM"));
    CHECK(Render(options) == 0);
    CHECK(BytesOf(options.output).find("webm") < 64);
    CHECK(folder.Count() == 1);
}

TEST_CASE("Scripts are found by file, folder or name, and a broken one among several is left out")
{
    const TestFolder folder;
    pxvis::RenderOptions options = Options(folder.Path("a.png"));
    options.at = 7.1;
    for (const char* name : { "Undertow", "Bright/Undertow", "Bright\\Undertow", "underTow",
             "bright/Undertow.pxv", "" }) {
        options.script = name;
        options.replace = true;
        CHECK(Render(options) == 0);
    }
    fs::create_directory(folder / "set");
    folder.Write("set/a.pxv", "<PXV");
    options.script = folder.Path("set");
    CHECK(Render(options) == 1);
    folder.Write("set/b.pxv", "<PXV Version=\"1.0\"/>");
    std::ostringstream errors;
    CHECK(pxvis::RunRender(options, errors) == 0);
    CHECK(errors.str().find("left out") != std::string::npos);
}

TEST_CASE("A script that draws nothing and a song that is cut short are told, and no failure")
{
    const TestFolder folder;
    const TestFile nothing("nothing.pxv", "<PXV Version=\"1.0\"/>");
    pxvis::RenderOptions options = Options(folder.Path("%02d.png"));
    options.script = nothing.Path();
    options.to = 9.1;
    std::ostringstream errors;
    CHECK(pxvis::RunRender(options, errors) == 0);
    CHECK(
        errors.str() == "pxvis: warning: " + nothing.Path() + ": drew nothing; see pxvis check\n");
    // So soon a good script may have drawn nothing either.
    const TestFile faulty("faulty.pxv",
        "<PXV Version=\"1.0\"><Component GUID=\"36267E6D-70E1-435e-9E2A-428EEA2D3C7E\">"
        "<Properties><OnEquation>=</OnEquation></Properties></Component></PXV>");
    options.script = faulty.Path();
    options.output = folder.Path("b.png");
    options.at = 7;
    errors.str("");
    CHECK(pxvis::RunRender(options, errors) == 0);
    CHECK(errors.str() == "pxvis: warning: " + faulty.Path() + ": 1 fault; see pxvis check\n");

    std::string error;
    const std::vector<float> quiet(size_t { 2 } * 44100 * 3);
    const std::string song = folder.Path("song.flac");
    REQUIRE_MESSAGE(WriteSongFile(song, quiet, "flacenc", nullptr, error), error);
    fs::resize_file(song, fs::file_size(song) / 2);
    options = Options(folder.Path("a.mp4"));
    options.song = song;
    options.from = 0;
    options.to = -1;
    errors.str("");
    CHECK(pxvis::RunRender(options, errors) == 0);
    INFO(errors.str());
    CHECK(errors.str().find("pxvis: warning: " + song + ": 1.") == 0);
    CHECK(BytesOf(options.output).substr(4, 4) == "ftyp");
}
