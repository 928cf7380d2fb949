#include "foundation/OQFolders.h"

#include "TestFolder.h"
#include "TestFolderVariable.h"
#include "foundation/OQDataRoots.h"
#include "foundation/StringPrinting.h"
#include "foundation/files/FakeTools.h"
#include "os/InstallPlaces.h"

#include <doctest/doctest.h>

namespace {

OQString Text(const std::string& path)
{
    return OQString::FromUtf8(path);
}

}

TEST_CASE("What is shipped and what is the user's are two folders, both beside a portable program")
{
    const pxvis::os::InstallPlaces places { "/usr/lib/pxvis", "/usr/share/pxvis", "" };
    const auto installed = OQProcessFolders::From("", "/home/a/.local/share", places);
    CHECK(installed.install == u"/usr/share/pxvis/");
    CHECK(installed.data == u"/home/a/.local/share/pxvis/");
    CHECK(installed.module == u"/usr/lib/pxvis/");
    CHECK_FALSE(installed.portable);

    const auto portable = OQProcessFolders::From("/media/stick", "/home/a/.local/share", places);
    CHECK(portable.install == u"/media/stick/");
    CHECK(portable.data == u"/media/stick/Application Data/pxvis/");
    CHECK(portable.applicationData == u"/media/stick/Application Data/");
    CHECK(portable.portable);

    const auto homeless = OQProcessFolders::From("", "", places);
    CHECK(homeless.data.IsEmpty());
}

TEST_CASE("The user's folders follow the environment, the theme goes before them")
{
    FakeTools& tools = FakeTools::Fresh();
    const TestFolderVariable data("XDG_DATA_HOME", "/somewhere/data/");
    CHECK(OQFolders::GetDataFolder() == u"/somewhere/data/pxvis/");
    CHECK(OQFolders::GetAppDataFolder() == u"/somewhere/data/Tarnwick/Generic/");
    tools.dataFolder = u"/theme";
    CHECK(OQFolders::GetAppDataFolder() == u"/theme/");

    const TestFolderVariable noData("XDG_DATA_HOME", "not/absolute");
    const TestFolderVariable home("HOME", "/home/b");
    CHECK(OQFolders::GetDataFolder() == u"/home/b/.local/share/pxvis/");
    const TestFolderVariable noHome("HOME", "not/absolute");
    CHECK(OQFolders::GetDataFolder() == OQFolders::GetInstallFolder() + u"Data/");
    CHECK(OQDataRoots::Get().user.IsEmpty());
    tools.dataFolder.clear();
    CHECK(OQFolders::GetAppDataFolder().IsEmpty());
    CHECK(OQFolders::GetTempLocation().IsEmpty());
}

TEST_CASE("Temporary files lie where the user says, or else with the product's own")
{
    FakeTools& tools = FakeTools::Fresh();
    const TestFolder folder;
    tools.dataFolder = Text(folder.Path("data")).GetText();
    const OQString own = Text(folder.Path("data/Temp/"));
    CHECK(OQFolders::GetTempLocation() == own);
    CHECK(std::filesystem::is_directory(folder.Path("data/Temp")));
    tools.tempLocation = u"/";
    CHECK(OQFolders::GetTempLocation() == own);
    CHECK(tools.tempLocation);

    tools.tempLocation = Text(folder.Path("chosen")).GetText();
    CHECK(OQFolders::GetTempLocation() == Text(folder.Path("chosen/Tarnwick/")));
    CHECK(std::filesystem::is_directory(folder.Path("chosen/Tarnwick")));

    for (const std::string& bad : { folder.Path("file"), std::string("relative") }) {
        folder.Write("file", "x");
        tools.tempLocation = Text(bad).GetText();
        CHECK(OQFolders::GetTempLocation() == own);
        CHECK_FALSE(tools.tempLocation);
    }
}
