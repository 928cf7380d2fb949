#include "foundation/OQFileSystem.h"

#include "TestFolder.h"
#include "foundation/OQFilename.h"
#include "foundation/StringPrinting.h"
#include "foundation/files/FakeTools.h"

#include <doctest/doctest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

OQString Path(const TestFolder& folder, const std::string& name)
{
    return OQString::FromUtf8(folder.Path(name));
}

}

TEST_CASE("A folder is made with all that is missing above it, where the tools allow it")
{
    FakeTools& tools = FakeTools::Fresh();
    const TestFolder folder;
    CHECK(OQFileSystem::MakeDirectoryTree(Path(folder, "a/b//c/")));
    CHECK(fs::is_directory(folder.Path("a/b/c")));
    CHECK(OQFileSystem::MakeDirectoryTree(Path(folder, "a/b")));
    CHECK_FALSE(OQFileSystem::MakeDirectoryTree(u""));
    CHECK(OQFileSystem::MakeDirectoryTree(u"relative/folder"));
    CHECK_FALSE(fs::exists("relative"));
    CHECK(tools.log.empty());

    folder.Write("file", "x");
    CHECK_FALSE(OQFileSystem::MakeDirectoryTree(Path(folder, "file/below")));
    REQUIRE(tools.log.size() == 1);
    CHECK(tools.log[0]
        == "OQFileSystem::MakeDirectoryTree: Failed! Path=" + folder.Path("file/below"));
    tools.mayMakeFolders = false;
    CHECK_FALSE(OQFileSystem::MakeDirectoryTree(Path(folder, "forbidden")));
    CHECK_FALSE(fs::exists(folder.Path("forbidden")));
    CHECK(OQFileSystem::MakeDirectoryTree(Path(folder, "a")));
}

TEST_CASE("A text file makes the folders above it")
{
    FakeTools::Fresh();
    const TestFolder folder;
    CHECK(OQFileSystem::WriteTextFile(Path(folder, "My Scripts/new.pxv"), u"\u00e4\r\n"));
    CHECK(folder.Read("My Scripts/new.pxv") == "\xC3\xA4\r\n");
}

TEST_CASE("A file that may not be written is deleted, one that is gone too, a folder is not")
{
    FakeTools& tools = FakeTools::Fresh();
    const TestFolder folder;
    folder.Write("locked", "x");
    REQUIRE(chmod(folder.Path("locked").c_str(), 0) == 0);
    CHECK(OQFileSystem::DeleteFile(Path(folder, "locked")));
    CHECK(OQFileSystem::DeleteFile(Path(folder, "locked")));
    fs::create_symlink("nothing", folder.Path("link"));
    CHECK(OQFileSystem::DeleteFile(Path(folder, "link")));
    CHECK(folder.Names().empty());
    CHECK_FALSE(OQFileSystem::DeleteFile(u""));
    CHECK(tools.log.empty());
    CHECK_FALSE(OQFileSystem::DeleteFile(Path(folder, "")));
    REQUIRE(tools.log.size() == 1);
    CHECK(tools.log[0].starts_with("OQFileSystem::DeleteFile: Error "));
    CHECK(tools.log[0].ends_with(" deleting existing file: " + folder.Path("")));
}

TEST_CASE("A new file takes the old one's place and leaves nothing beside it")
{
    FakeTools& tools = FakeTools::Fresh();
    const TestFolder folder;
    folder.Write("source", "new");
    CHECK(OQFileSystem::SafeReplaceFile(Path(folder, "fresh"), Path(folder, "source")));
    CHECK(folder.Names() == "fresh ");
    folder.Write("source.pxv", "newer");
    folder.Write("old.pxv", "old");
    folder.Write("old~1.pxv", "somebody's");
    fs::create_symlink("old.pxv", folder.Path("link"));
    CHECK(OQFileSystem::SafeReplaceFile(Path(folder, "link"), Path(folder, "source.pxv")));
    CHECK(folder.Names() == "fresh link old.pxv old~1.pxv ");
    CHECK(fs::is_symlink(folder.Path("link")));
    CHECK(folder.Read("old.pxv") == "newer");
    CHECK(folder.Read("old~1.pxv") == "somebody's");
    CHECK(OQFileSystem::SafeReplaceFile(Path(folder, "link"), Path(folder, "old.pxv")));
    CHECK(folder.Read("old.pxv") == "newer");
    CHECK(tools.log.empty());
}

TEST_CASE("When the new file can't be moved the old one is back and the new one is gone")
{
    FakeTools& tools = FakeTools::Fresh();
    const TestFolder folder;
    folder.Write("target", "old");
    CHECK_FALSE(OQFileSystem::SafeReplaceFile(Path(folder, "target"), Path(folder, "missing")));
    CHECK(tools.log.empty());

    // On another disk, and can't be read: it is there but can be moved nowhere.
    CHECK_FALSE(OQFileSystem::SafeReplaceFile(Path(folder, "target"), u"/proc/self/mem"));
    CHECK(folder.Names() == "target ");
    CHECK(folder.Read("target") == "old");
    REQUIRE(!tools.log.empty());
    CHECK(tools.log[0]
        == "OQFileSystem::SafeReplaceFile: Error moving new file into place of original name");

    tools.log.clear();
    fs::create_directory(folder.Path("folder"));
    folder.Write("source", "new");
    CHECK_FALSE(OQFileSystem::SafeReplaceFile(Path(folder, "folder"), Path(folder, "source")));
    CHECK(folder.Names() == "folder target ");
    folder.Write("source", "new");
    CHECK_FALSE(OQFileSystem::SafeReplaceFile(u"/proc/self/mem", Path(folder, "source")));
    CHECK(folder.Names() == "folder target ");
    REQUIRE(tools.log.size() == 1);
    CHECK(tools.log[0] == "OQFileSystem::SafeReplaceFile: Error renaming original file");
}

TEST_CASE("A file moves to another disk, and over nothing that is there")
{
    FakeTools::Fresh();
    if (!fs::is_directory("/dev/shm"))
        return;
    const TestFolder folder;
    const std::string source = "/dev/shm/pxvis-" + std::to_string(getpid());
    std::ofstream(source) << "from afar";
    CHECK(OQFileSystem::SafeReplaceFile(Path(folder, "target"), OQString::FromUtf8(source)));
    CHECK(folder.Read("target") == "from afar");
    CHECK_FALSE(fs::exists(source));
}

TEST_CASE("A folder goes with all in it, and what links lead to stays")
{
    FakeTools& tools = FakeTools::Fresh();
    const TestFolder folder;
    const TestFolder elsewhere;
    elsewhere.Write("precious", "x");
    fs::create_directories(folder.Path("tree/a/b"));
    folder.Write("tree/a/b/locked", "x");
    fs::create_directory_symlink(elsewhere.Path(""), folder.Path("tree/a/out"));
    fs::create_symlink(elsewhere.Path("precious"), folder.Path("tree/file"));
    fs::create_directory_symlink(elsewhere.Path(""), folder.Path("root"));
    REQUIRE(chmod(folder.Path("tree/a/b").c_str(), 0500) == 0);
    CHECK(OQFileSystem::DeleteDirectory(Path(folder, "tree/")));
    CHECK(folder.Names() == "root ");
    CHECK(elsewhere.Names() == "precious ");
    CHECK(OQFileSystem::DeleteDirectory(Path(folder, "tree")));
    CHECK(tools.log.empty());

    CHECK_FALSE(OQFileSystem::DeleteDirectory(Path(folder, "root")));
    CHECK_FALSE(OQFileSystem::DeleteDirectory(Path(folder, "root/")));
    CHECK(elsewhere.Names() == "precious ");
    for (const OQChar* path : { u"", u"/", u"//", u"..", u".", u"/tmp/.." })
        CHECK_FALSE(OQFileSystem::DeleteDirectory(path));
}

TEST_CASE("A copy of a folder holds its files and folders, over what was there, without links")
{
    FakeTools::Fresh();
    const TestFolder folder;
    const TestFolder elsewhere;
    elsewhere.Write("secret", "secret");
    fs::create_directories(folder.Path("from/empty"));
    fs::create_directories(folder.Path("from/sub"));
    folder.Write("from/sub/file", "new");
    fs::create_symlink(elsewhere.Path("secret"), folder.Path("from/link"));
    fs::create_directory_symlink(elsewhere.Path(""), folder.Path("from/out"));
    fs::create_directories(folder.Path("to/sub"));
    // Not written through: the link goes, its file stays.
    fs::create_symlink(elsewhere.Path("secret"), folder.Path("to/sub/file"));
    CHECK(OQFileSystem::CopyDirectory(Path(folder, "from"), Path(folder, "to")));
    CHECK(folder.Read("to/sub/file") == "new");
    CHECK(fs::is_directory(folder.Path("to/empty")));
    CHECK_FALSE(fs::exists(folder.Path("to/link")));
    CHECK_FALSE(fs::exists(folder.Path("to/out")));
    CHECK(elsewhere.Read("secret") == "secret");

    CHECK(OQFileSystem::CopyDirectory(Path(folder, "from"), Path(folder, "from/sub/again")));
    CHECK(folder.Read("from/sub/again/sub/file") == "new");
    CHECK_FALSE(OQFileSystem::CopyDirectory(Path(folder, "missing"), Path(folder, "to")));
    REQUIRE(mkfifo(folder.Path("from/pipe").c_str(), 0600) == 0);
    CHECK_FALSE(OQFileSystem::CopyDirectory(Path(folder, "from"), Path(folder, "to2")));
    CHECK(folder.Read("to2/sub/file") == "new");
}

TEST_CASE("Without the reader module there is nothing at any address")
{
    OQString text = u"stale";
    CHECK_FALSE(OQFileSystem::ReadTextFile(u"http://127.0.0.1/", text));
    CHECK(text.IsEmpty());
    const OQFilename filename(u"http://127.0.0.1/");
    CHECK(filename.GetSize(true) == -1);
}
