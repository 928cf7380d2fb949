#include "ChildProcess.h"
#include "Plugins/Visualization/library/PlayerWindow.h"

#include <cstdlib>
#include <dlfcn.h>
#include <doctest/doctest.h>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

constexpr uint32_t red = 0xe02010;

// The library in a folder of its own, without its tools.
struct WithoutTools
{
    WithoutTools()
    {
        for (const char* name : { "libpxvis.so", "OQImage.so", "pxvis-build-tree" })
            fs::copy(fs::path(PXVIS_BINARY_DIR "/bin") / name, folder / name);
    }

    IOQVisualization* Create(IOQVisualizationHost* host) const
    {
        void* library = dlopen(folder.Path("libpxvis.so").c_str(), RTLD_NOW | RTLD_LOCAL);
        REQUIRE(library);
        return reinterpret_cast<decltype(&CreateVisualization)>(
            dlsym(library, "CreateVisualization"))(2, host);
    }

    TestFolder folder;
};

}

TEST_CASE("When the display goes away the player lives on without a window, and nothing is lost")
{
    // Qt is not touched any more then, and what its threads had posted stays undelivered.
    const TestVariable leaks("ASAN_OPTIONS", "detect_leaks=0");
    InProcessOfItsOwn([] {
        PlayerWindow player(320, 200);
        player.AddScript("Red.pxv", FlushPiece("0xE02010"));
        REQUIRE(player.Open() != 0);
        player.visualization->SetProperty(u"Current Mode", u"Red");
        REQUIRE(player.RunUntil([&] { return player.Middle() == red; }));
        TestDisplay().Kill();
        player.Run(1000);
        CHECK(PropertyOf(*player.visualization, u"Current Mode") == u"Red");
        CHECK(player.visualization->SetProperty(u"Current Mode", u"Cycle All"));
        CHECK(player.visualization->CreateWnd(player.GetWindow(), 0) == 0);
        player.Run(200);
    });
}

TEST_CASE("A player may end with the window open and the visualization never destroyed")
{
    InProcessOfItsOwn([] {
        static PlayerWindow* const player = new PlayerWindow(320, 200);
        player->AddScript("Red.pxv", FlushPiece("0xE02010"));
        REQUIRE(player->Open() != 0);
        player->visualization->SetProperty(u"Current Mode", u"Red");
        CHECK(player->RunUntil([&] { return player->Middle() == red; }));
    });
}

TEST_CASE("Without the tools the library says so, and shows pictures all the same")
{
    InProcessOfItsOwn([] {
        const WithoutTools broken;
        PlayerWindow player(320, 200);
        player.AddScript("Red.pxv", FlushPiece("0xE02010"));
        player.visualization.reset(broken.Create(&player.host));
        REQUIRE(player.visualization);
        REQUIRE(player.visualization->CreateWnd(player.GetWindow(), 0) != 0);
        CHECK(player.visualization->SetProperty(u"Current Mode", u"Red"));
        // The box has a loop of its own, in which pictures go on, until somebody closes it.
        ChildProcess user({ "sh", "-c",
            "for i in $(seq 100); do sleep 0.2; box=$(xdotool search --name 'Critical Error') && "
            "sleep 1 && xdotool windowfocus $box key Return && exit 0; done; exit 1" });
        CHECK(player.RunUntil([&] { return player.Middle() == red; }, 40000));
        CHECK(user.Wait(30, [&] { player.Run(5); }) == 0);
        player.Run(300);
        CHECK(player.Middle() == red);
    });
}

TEST_CASE("Without tools and display the text goes to standard error, once")
{
    const TestFolder folder;
    const char* const isChild = std::getenv("PXVIS_TEST_NO_DISPLAY");
    if (!isChild) {
        setenv("PXVIS_TEST_NO_DISPLAY", "1", 1);
        ChildProcess child(
            { "/proc/self/exe", "--test-case=Without tools and display*" }, folder.Path("errors"));
        unsetenv("PXVIS_TEST_NO_DISPLAY");
        CHECK(child.Wait(60) == 0);
        const std::string errors = BytesOf(folder.Path("errors"));
        const size_t first
            = errors.find("Critical Error: The following module has failed to load:");
        CHECK(first != std::string::npos);
        CHECK(errors.find("Critical Error", first + 1) == std::string::npos);
        return;
    }
    unsetenv("DISPLAY");
    const WithoutTools broken;
    const std::unique_ptr<IOQVisualization> visualization(broken.Create(nullptr));
    REQUIRE(visualization);
    CHECK(visualization->CreateWnd(1, 0) == 0);
    CHECK(visualization->CreateWnd(1, 0) == 0);
    CHECK(PropertyOf(*visualization, u"Version") == u"3");
}
