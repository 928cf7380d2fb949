#include "foundation/OQSiblingModules.h"

#include "foundation/IOQImage.h"

#include <doctest/doctest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

const std::string kBin = PXVIS_BINARY_DIR "/bin/";

}

TEST_CASE("A missing image module gives null and a reason that stays")
{
    OQSiblingModules modules({ .name = "OQNothing.so" });
    CHECK(modules.ImageFailure().empty());
    CHECK(modules.ImageApp() == nullptr);
    const std::string reason = modules.ImageFailure();
    CHECK(reason.find(kBin + "OQNothing.so") != std::string::npos);
    CHECK(modules.ImageApp() == nullptr);
    CHECK(modules.ImageFailure() == reason);
}

TEST_CASE("A library that is no image module is refused")
{
    OQSiblingModules modules({ .name = kBin + "ModuleUnderTest.so" });
    CHECK(modules.ImageApp() == nullptr);
    CHECK(modules.ImageFailure().find("GetOQImageAppDLL") != std::string::npos);
}

TEST_CASE("An absolute name is loaded as it stands")
{
    OQSiblingModules modules({ .name = kBin + "OQImage.so" });
    CHECK(modules.ImageApp() != nullptr);
    CHECK(modules.ImageFailure().empty());
}

TEST_CASE("A module that isn't in its folder may lie one below")
{
    const std::string folder = kBin + "x64";
    std::filesystem::create_directory(folder);
    std::error_code ignored;
    std::filesystem::create_symlink("../OQImage.so", folder + "/OQBelow.so", ignored);
    OQSiblingModules modules({ .name = "OQBelow.so" });
    CHECK(modules.ImageApp() != nullptr);
    CHECK(modules.ImageFailure().empty());
    modules.Unload();
    std::filesystem::remove_all(folder);
}

TEST_CASE("Threads that ask at once get one interface and it works again after an unload")
{
    OQSiblingModules modules;
    std::vector<IOQImageApp*> got(8);
    {
        std::vector<std::jthread> threads;
        for (IOQImageApp*& app : got)
            threads.emplace_back([&] { app = modules.ImageApp(); });
    }
    for (IOQImageApp* app : got)
        CHECK(app == got.front());
    REQUIRE(got.front());

    modules.Unload();
    const std::unique_ptr<IOQImage> image(OQCreateImage());
    REQUIRE(image);
    CHECK(image->Create(2, 2, 0, 0));
    CHECK(modules.ImageApp() != nullptr);
}

TEST_CASE("Tools that do not load leave the words for the user")
{
    OQSiblingModules modules({ .name = "OQNothing.so" }, { .name = "/no/OQTools.so" });
    CHECK(modules.ToolsFailureText().IsEmpty());
    CHECK(modules.Tools() == nullptr);
    CHECK(modules.ToolsFailureText()
        == u"The following module has failed to load:\r\n/no/OQTools.so\r\n\r\nIt has reported the "
           u"following error:\r\n\r\nFailed to load OQTools\r\n\r\nPlease reinstall the latest "
           u"version of the program.");
    modules.Unload();
    CHECK(modules.ToolsFailureText().IsEmpty());
}
