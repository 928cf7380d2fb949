#include "TestFolder.h"
#include "foundation/OQFileFinder.h"
#include "foundation/OQFileSystem.h"
#include "foundation/OQFilename.h"
#include "foundation/StringPrinting.h"
#include "foundation/files/FakeTools.h"

#include <doctest/doctest.h>

namespace {

// A path of exactly that many bytes below the folder, in names of 200 at most.
OQString PathOf(const TestFolder& folder, size_t length)
{
    std::string path = folder.Path("tree");
    while (length - path.size() > 220)
        path += "/" + std::string(200, 'd');
    path += "/" + std::string(length - path.size() - 1, 'f');
    return OQString::FromUtf8(path);
}

}

TEST_CASE("Files and folders work by paths of any length")
{
    FakeTools::Fresh();
    const TestFolder folder;
    const OQString tree = OQString::FromUtf8(folder.Path("tree"));
    for (const int length : { 259, 260, 300, 1000, 4090, 4095, 4096, 4097, 4200, 9000 }) {
        CAPTURE(length);
        const OQString path = PathOf(folder, static_cast<size_t>(length));
        const OQString other = path.Left(length - 1) + u"g";
        REQUIRE(path.GetLength() == length);
        CHECK_FALSE(OQFileSystem::FileExists(path));
        CHECK(OQFileSystem::DeleteFile(path));
        CHECK(OQFileSystem::WriteTextFile(path, u"one"));
        CHECK(OQFileSystem::WriteTextFile(other, u"two"));
        CHECK(OQFileSystem::FileExists(path));
        CHECK(OQFileSystem::GetLastWriteTime(path) > 0);
        CHECK(OQFilename(path).GetSize() == 3);

        const OQString above = path.Left(path.ReverseFind(u'/'));
        CHECK(OQFileSystem::CopyDirectory(above, above + u"/copy"));
        CHECK(OQFileSystem::SafeReplaceFile(path, other));
        OQString text;
        CHECK(OQFileSystem::ReadTextFile(path, text));
        CHECK(text == u"two");

        OQFileFinder finder(tree, u"*f", OQFinderDepth::Tree);
        size_t found = 0;
        for (; finder.Next(); ++found)
            CHECK(OQFileSystem::FileExists(finder.GetPath()));
        CHECK(found == 2);
        CHECK(finder.IsComplete());
        CHECK(OQFileSystem::DeleteFile(path));
        CHECK_FALSE(OQFileSystem::FileExists(path));
        CHECK(OQFileSystem::DeleteDirectory(tree));
        CHECK(folder.Names().empty());
    }
}

TEST_CASE("A name that no file system takes is a file that isn't there")
{
    FakeTools& tools = FakeTools::Fresh();
    const TestFolder folder;
    const OQString start = OQString::FromUtf8(folder.Path(""));
    for (const size_t length : { 256, 4096, 5000, 100'000 }) {
        const OQString path = start + OQString::FromUtf8(std::string(length, 'x'));
        OQString text;
        CHECK_FALSE(OQFileSystem::FileExists(path));
        CHECK_FALSE(OQFileSystem::ReadTextFile(path, text));
        CHECK_FALSE(OQFileSystem::WriteTextFile(path, u"x"));
        CHECK_FALSE(OQFileSystem::MakeDirectoryTree(path + u"/below"));
        CHECK(OQFileSystem::DeleteFile(path));
    }
    CHECK(tools.log.size() == 4);
    CHECK(folder.Names().empty());
}
