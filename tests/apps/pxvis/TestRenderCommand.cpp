#include "VisTesting.h"
#include "apps/pxvis/RenderCommand.h"

#include <doctest/doctest.h>

#include <sstream>

namespace {

namespace fs = std::filesystem;

// A folder of the test's own, gone at the end.
struct Folder
{
    Folder()
        : path(fs::temp_directory_path() / ("pxvis-render-" + std::to_string(getpid())))
    {
        fs::create_directory(path);
    }

    ~Folder()
    {
        std::error_code ignored;
        fs::permissions(path, fs::perms::owner_all, ignored);
        fs::remove_all(path, ignored);
    }

    std::string File(const char* name) const { return (path / name).string(); }

    int Count() const
    {
        return static_cast<int>(
            std::distance(fs::directory_iterator(path), fs::directory_iterator()));
    }

    fs::path path;
};

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

std::string Content(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

}

TEST_CASE("A part of a song becomes a video, and an existing one is replaced only when told to")
{
    const Folder folder;
    pxvis::RenderOptions options = Options(folder.File("a.mp4"));
    CHECK(Render(options) == 0);
    const std::string video = Content(options.output);
    CHECK(video.size() > 2000);
    CHECK(video.substr(4, 4) == "ftyp");
    CHECK(folder.Count() == 1);

    std::ofstream(options.output) << "the user's own";
    CHECK(Render(options) == 1);
    CHECK(Content(options.output) == "the user's own");
    options.replace = true;
    options.frameRate = { 30000, 1001 };
    options.pictureScale = 0.5;
    CHECK(Render(options) == 0);
    CHECK(Content(options.output).substr(4, 4) == "ftyp");
    CHECK(folder.Count() == 1);
}

TEST_CASE("A single picture is the engine's at that moment, at the size asked for")
{
    const Folder folder;
    pxvis::RenderOptions options = Options(folder.File("a.png"));
    options.at = 8.2;
    CHECK(Render(options) == 0);
    const std::string picture = Content(options.output);
    CHECK(picture.substr(1, 3) == "PNG");
    CHECK(picture.substr(16, 8) == std::string("\0\0\0\x40\0\0\0\x24", 8));
    CHECK(Render(options) == 1); // exists
    options.output = folder.File("50% b.png"); // no numbered pictures
    options.pictureScale = 0.5;
    CHECK(Render(options) == 0);
    CHECK(Content(options.output).substr(16, 8) == picture.substr(16, 8));
    options.output = folder.File("c.png");
    options.seeded = true;
    options.seed = 7;
    options.pictureScale = 1;
    CHECK(Render(options) == 0);
    options.at = 9;
    options.replace = true;
    CHECK(Render(options) == 1); // behind --to
    CHECK(folder.Count() == 3);
}

TEST_CASE("What can't be done leaves nothing behind and says why in one line")
{
    const Folder folder;
    const TestFile text("song.mp3", "not music at all");
    const TestFile brokenScript("broken.pxv", "<PXV Version=\"1.0\"><Layer>");
    const auto fails = [&](auto change) {
        pxvis::RenderOptions options = Options(folder.File("out.mp4"));
        change(options);
        CHECK(Render(options) == 1);
        CHECK(folder.Count() == 0);
    };
    fails([](auto& options) { options.song = "/nowhere.mp3"; });
    fails([](auto& options) { options.song = "/tmp"; });
    fails([](auto& options) { options.song = "/nowhere\n\x1B[31m.mp3"; }); // still one line
    fails([&](auto& options) { options.song = text.Path(); });
    fails([&](auto& options) { options.script = brokenScript.Path(); });
    fails([](auto& options) { options.script = "No Such Script"; });
    fails([](auto& options) { options.width = 0; });
    fails([](auto& options) { options.width = 100000; });
    fails([](auto& options) { options.width = 63; });
    fails([](auto& options) { options.output = "/nowhere/out.mp4"; });
    fails([&](auto& options) { options.output = folder.File("out.avi"); });
    fails([&](auto& options) { options.output = folder.File("frame-%05d.png"); });
    fails([&](auto& options) {
        options.output = folder.File("out.png");
        options.to = -1;
        options.at = 1e6;
    });
    fails([&](auto& options) {
        options.output = folder.File("out.png");
        options.width = 100000;
        options.pictureScale = 0.05;
    });
    fails([](auto& options) { options.to = options.from; });
    fails([](auto& options) {
        options.from = 4000;
        options.to = -1;
    });
}

TEST_CASE("Scripts are found by file, folder or name, and a broken one among several is left out")
{
    const Folder folder;
    pxvis::RenderOptions options = Options(folder.File("a.png"));
    options.at = 7.1;
    options.script = "undertow";
    CHECK(Render(options) == 1); // names are exact
    for (const char* name : { "Undertow", "Bright/Undertow", "Bright\\Undertow", "" }) {
        options.script = name;
        options.replace = true;
        CHECK(Render(options) == 0);
    }
    fs::create_directory(folder.path / "set");
    std::ofstream(folder.path / "set" / "a.pxv") << "<PXV";
    options.script = folder.File("set");
    CHECK(Render(options) == 1);
    std::ofstream(folder.path / "set" / "b.pxv") << "<PXV Version=\"1.0\"/>";
    std::ostringstream errors;
    CHECK(pxvis::RunRender(options, errors) == 0);
    CHECK(errors.str().find("left out") != std::string::npos);
}
