#include "foundation/OQFileSystem.h"

#include "TestFolder.h"
#include "foundation/StringPrinting.h"

#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace {

OQString Path(const TestFolder& folder, const char* name)
{
    return OQString::FromUtf8(folder.Path(name));
}

}

TEST_CASE("A text file comes in any encoding, and a lone LF is a line end")
{
    const TestFolder folder;
    OQString text;
    folder.Write("utf8", "a\n\xC3\xA9\r\n\nb");
    CHECK(OQFileSystem::ReadTextFile(Path(folder, "utf8"), text));
    CHECK(text == u"a\r\n\u00e9\r\n\r\nb");
    folder.Write("1252", "\x93\xE9\x94");
    CHECK(OQFileSystem::ReadTextFile(Path(folder, "1252"), text));
    CHECK(text == u"\u201c\u00e9\u201d");
    folder.Write("utf16", std::string_view("\xFE\xFF\0a\0\n", 6));
    CHECK(OQFileSystem::ReadTextFile(Path(folder, "utf16"), text));
    CHECK(text == u"a\r\n");
    folder.Write("zero",
        std::string_view("\xEF\xBB\xBF"
                         "ab\0cd",
            8));
    CHECK(OQFileSystem::ReadTextFile(Path(folder, "zero"), text));
    CHECK(text == u"ab");
    CHECK(OQFileSystem::ReadTextFile(u"", text));
    CHECK(text.IsEmpty());
}

TEST_CASE("What isn't a regular file of a fair size isn't read, and nothing waits")
{
    const TestFolder folder;
    OQString text = u"old";
    CHECK_FALSE(OQFileSystem::ReadTextFile(Path(folder, "missing"), text));
    CHECK(text.IsEmpty());
    folder.Write("ten", "0123456789");
    CHECK(OQFileSystem::ReadTextFile(Path(folder, "ten"), text, 10));
    CHECK_FALSE(OQFileSystem::ReadTextFile(Path(folder, "ten"), text, 9));
    CHECK_FALSE(OQFileSystem::ReadTextFile(Path(folder, ""), text));
    CHECK_FALSE(OQFileSystem::ReadTextFile(u"/dev/zero", text));
    REQUIRE(mkfifo(folder.Path("pipe").c_str(), 0600) == 0);
    CHECK_FALSE(OQFileSystem::ReadTextFile(Path(folder, "pipe"), text));
    const OQString hiddenEnd(u"/dev/null\0.pxv", 14);
    CHECK_FALSE(OQFileSystem::FileExists(hiddenEnd));
    CHECK_FALSE(OQFileSystem::FileExists(Path(folder, "")));
    CHECK(OQFileSystem::FileExists(Path(folder, "ten")));
}

TEST_CASE("A written file replaces the old one whole, keeps its permissions and leaves nothing")
{
    const TestFolder folder;
    folder.Write("script", "old");
    const std::string path = folder.Path("script");
    REQUIRE(chmod(path.c_str(), 0640) == 0);
    std::filesystem::create_symlink("script", folder / "link");
    CHECK(OQFileSystem::WriteTextFile(Path(folder, "link"), u"n\u00e9w\r\n"));
    CHECK(folder.Read("script") == "n\xC3\xA9w\r\n");
    CHECK(std::filesystem::is_symlink(folder / "link"));

    struct stat status
    {
    };

    REQUIRE(stat(path.c_str(), &status) == 0);
    CHECK((status.st_mode & 07777) == 0640);
    CHECK(OQFileSystem::WriteTextFile(Path(folder, "fresh"), u""));
    CHECK(folder.Count() == 3);
}

TEST_CASE("A file that root writes stays its owner's" * doctest::skip(geteuid() != 0))
{
    const TestFolder folder;
    folder.Write("script", "old");
    const std::string path = folder.Path("script");
    REQUIRE(chown(path.c_str(), 12345, 12346) == 0);
    REQUIRE(chmod(path.c_str(), 0460) == 0);
    CHECK(OQFileSystem::WriteTextFile(Path(folder, "script"), u"new"));

    struct stat status
    {
    };

    REQUIRE(stat(path.c_str(), &status) == 0);
    CHECK(status.st_uid == 12345);
    CHECK(status.st_gid == 12346);
    CHECK((status.st_mode & 07777) == 0460);
}

TEST_CASE("A link whose file isn't there yet stays a link, and its file is made")
{
    const TestFolder folder;
    std::filesystem::create_directory(folder / "elsewhere");
    std::filesystem::create_symlink("elsewhere/second", folder / "first");
    std::filesystem::create_symlink("../third", folder / "elsewhere/second");
    CHECK(OQFileSystem::WriteTextFile(Path(folder, "first"), u"x"));
    CHECK(std::filesystem::is_symlink(folder / "first"));
    CHECK(std::filesystem::is_symlink(folder / "elsewhere/second"));
    CHECK(folder.Read("third") == "x");

    std::filesystem::create_symlink("circle", folder / "circle");
    CHECK_FALSE(OQFileSystem::WriteTextFile(Path(folder, "circle"), u"x"));
    CHECK(std::filesystem::is_symlink(folder / "circle"));
}

TEST_CASE("A write that fails leaves what was there")
{
    const TestFolder folder;
    CHECK_FALSE(OQFileSystem::WriteTextFile(u"no/such/folder", u"x"));
    std::filesystem::create_directory(folder / "folder");
    CHECK_FALSE(OQFileSystem::WriteTextFile(Path(folder, "folder"), u"x"));
    CHECK_FALSE(OQFileSystem::WriteTextFile(u"/dev/null", u"x"));
    CHECK_FALSE(OQFileSystem::WriteTextFile(u"", u"x"));
    if (geteuid() != 0) { // nothing is denied to root
        folder.Write("locked", "old");
        REQUIRE(chmod(folder.Path("locked").c_str(), 0400) == 0);
        CHECK_FALSE(OQFileSystem::WriteTextFile(Path(folder, "locked"), u"x"));
        CHECK(folder.Read("locked") == "old");
        std::filesystem::remove(folder / "locked");
    }
    CHECK(folder.Count() == 1);
    CHECK(std::filesystem::is_character_file("/dev/null"));
}

TEST_CASE("The last write time tells files apart by fractions of a second")
{
    const TestFolder folder;
    CHECK(OQFileSystem::GetLastWriteTime(Path(folder, "missing")) == 0);
    folder.Write("script", "x");
    const timespec times[2] = { { 5, 0 }, { 1000000000, 250000000 } };
    REQUIRE(utimensat(AT_FDCWD, folder.Path("script").c_str(), times, 0) == 0);
    CHECK(OQFileSystem::GetLastWriteTime(Path(folder, "script")) == 1000000000.25);
}
