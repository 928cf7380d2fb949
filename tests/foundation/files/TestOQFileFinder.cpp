#include "foundation/OQFileFinder.h"

#include "TestFolder.h"
#include "foundation/StringPrinting.h"

#include <doctest/doctest.h>

namespace fs = std::filesystem;

namespace {

// Relative paths, folders with "/" behind them, each with a blank.
std::string Walk(const TestFolder& folder, const OQChar* pattern, OQFinderDepth depth,
    size_t maximum = OQFileFinder::MaximumEntries, bool complete = true)
{
    OQFileFinder finder(OQString::FromUtf8(folder.Path("")), pattern, depth, maximum);
    std::string found;
    while (finder.Next()) {
        CHECK(finder.GetPath() == OQString::FromUtf8(folder.Path("")) + finder.GetRelativePath());
        CHECK(finder.GetRelativePath().EndsWith(finder.GetName()));
        found += finder.GetRelativePath().ToUtf8() + (finder.IsFolder() ? "/ " : " ");
    }
    CHECK(finder.IsComplete() == complete);
    return found;
}

}

TEST_CASE("A walk is in the order of the names and goes where it is told")
{
    const TestFolder folder;
    fs::create_directories(folder.Path("b/inner"));
    for (const char* name : { "c.pxv", "a.PXV", "b/x.pxv", "b/inner/y.pxv", "b/inner/z.txt" })
        folder.Write(name, "x");
    CHECK(Walk(folder, u"*.*", OQFinderDepth::Folder) == "a.PXV b/ c.pxv ");
    CHECK(Walk(folder, u"*.pxv", OQFinderDepth::Tree) == "a.PXV b/inner/y.pxv b/x.pxv c.pxv ");
    CHECK(Walk(folder, u"*", OQFinderDepth::Tree)
        == "a.PXV b/ b/inner/ b/inner/y.pxv b/inner/z.txt b/x.pxv c.pxv ");
    CHECK(Walk(folder, u"*", OQFinderDepth::Tree, 3, false) == "a.PXV b/ c.pxv ");
    OQFileFinder missing(OQString::FromUtf8(folder.Path("missing")), u"*", OQFinderDepth::Tree);
    CHECK_FALSE(missing.Next());
    OQFileFinder nothing(u"", u"*", OQFinderDepth::Tree);
    CHECK_FALSE(nothing.Next());
}

TEST_CASE("Links are followed where that is wanted, each folder once, and never for ever")
{
    const TestFolder folder;
    const TestFolder elsewhere;
    fs::create_directory(folder.Path("a"));
    fs::create_directory_symlink("..", folder.Path("a/up"));
    fs::create_directory_symlink(elsewhere.Path(""), folder.Path("out"));
    fs::create_directory_symlink(elsewhere.Path(""), folder.Path("out2"));
    fs::create_symlink("nothing", folder.Path("broken"));
    elsewhere.Write("x", "x");
    CHECK(Walk(folder, u"*", OQFinderDepth::TreeAndLinks) == "a/ a/up/ broken out/ out/x out2/ ");
    CHECK(Walk(folder, u"*", OQFinderDepth::Tree) == "a/ a/up/ broken out/ out2/ ");

    std::string deep = folder.Path("a");
    for (int level = 0; level < 100; ++level)
        fs::create_directory(deep += "/d");
    CHECK(Walk(folder, u"d", OQFinderDepth::Tree, 1000, false).size() > 60 * 60);
}

TEST_CASE("A pattern is held against the whole name, without regard to case")
{
    const auto matches = [](const OQChar* name, const OQChar* pattern) {
        return OQFileFinder::Matches(name, pattern);
    };
    for (const OQChar* pattern :
        { u"*", u"*.*", u"abc.pxv", u"ABC.PXV", u"a*v", u"*c.p*", u"???.pxv", u"*a*b*c*.*", u"**" })
        CHECK(matches(u"abc.pxv", pattern));
    for (const OQChar* pattern : { u"", u"abc", u"*.px", u"??.pxv", u"*b", u"b*", u"????.pxv" })
        CHECK_FALSE(matches(u"abc.pxv", pattern));
    CHECK(matches(u"README", u"*.*"));
    CHECK(matches(u"", u"*"));
    CHECK_FALSE(matches(u"", u"?"));
    const OQString many = OQString::FromUtf8(std::string(250, 'a'));
    CHECK_FALSE(matches(many.GetText(), u"*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*b"));
}
