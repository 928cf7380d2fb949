#include "foundation/OQDataRoots.h"

#include "TestFolder.h"
#include "foundation/OQFileSystem.h"
#include "foundation/StringPrinting.h"
#include "foundation/files/FakeTools.h"

#include <doctest/doctest.h>

namespace {

// The user's root and the shipped one.
struct TwoRoots
{
    TestFolder folder;
    OQDataRoots roots;

    TwoRoots()
    {
        roots.user = OQString::FromUtf8(folder.Path("user/"));
        roots.shipped = OQString::FromUtf8(folder.Path("shipped/"));
    }

    void Write(const std::string& name) const
    {
        std::filesystem::create_directories(std::filesystem::path(folder.Path(name)).parent_path());
        folder.Write(name, "x");
    }

    // Below the folder of both; "" if there is none.
    std::string Find(const OQChar* name, int kind) const
    {
        const std::string path = OQFileSystem::FindDataFile(name, kind, roots).ToUtf8();
        return path.empty() ? path : path.substr(folder.Path("").size());
    }
};

}

TEST_CASE("The user's file hides the shipped one of its name, and both are listed as one")
{
    const TwoRoots two;
    for (const char* name : { "shipped/V/b.pxv", "shipped/V/Calm/Tide.pxv", "shipped/V/a.txt",
             "user/V/Calm/Tide.pxv", "user/V/z.PXV" })
        two.Write(name);
    CHECK(two.roots.FindFile(u"V/Calm/Tide.pxv") == two.roots.user + u"V/Calm/Tide.pxv");
    CHECK(two.roots.FindFile(u"V/b.pxv") == two.roots.shipped + u"V/b.pxv");
    CHECK(two.roots.FindFile(u"V").IsEmpty());
    CHECK(two.roots.HasFolder(u"V/Calm"));

    const auto files = two.roots.List(u"V/", u"*.pxv");
    REQUIRE(files.GetCount() == 3);
    CHECK(files[0].relative == u"Calm/Tide.pxv");
    CHECK(files[0].path == two.roots.user + u"V/Calm/Tide.pxv");
    CHECK(files[1].relative == u"b.pxv");
    CHECK(files[2].path == two.roots.user + u"V/z.PXV");
    CHECK(OQDataRoots {}.List(u"", u"*").GetCount() == 0);
    CHECK(OQDataRoots {}.FindFile(u"etc/passwd").IsEmpty());
}

TEST_CASE("What is shipped is saved as the user's, everything else where it was")
{
    const OQDataRoots roots { u"/home/a/pxvis/", u"/usr/share/pxvis/" };
    CHECK(roots.PathForSaving(u"/usr/share/pxvis/V/a.pxv") == u"/home/a/pxvis/V/a.pxv");
    CHECK(roots.PathForSaving(u"/usr/share/pxvis2/a.pxv") == u"/usr/share/pxvis2/a.pxv");
    CHECK(roots.PathForSaving(u"/tmp/a.pxv") == u"/tmp/a.pxv");
    CHECK(OQDataRoots { {}, roots.shipped }.PathForSaving(u"/usr/share/pxvis/a")
        == u"/usr/share/pxvis/a");
}

TEST_CASE("Art is looked for among the user's own first, a picture by its kinds in order")
{
    FakeTools& tools = FakeTools::Fresh();
    tools.language = u"German";
    const TwoRoots two;
    CHECK(two.Find(u"image:Logo", 3) == "");
    // From the last choice to the first: each new file wins.
    for (const char* name : { "shipped/Default Art/Logo.png", "user/Default Art/Logo.png",
             "shipped/Custom Art/Logo.tif", "user/Custom Art/Logo.bmp", "user/Custom Art/Logo.gif",
             "user/Custom Art/Logo.jpg", "shipped/Custom Art/Logo.png", "user/Custom Art/Logo.png",
             "user/Custom Art/Logo - German.png" }) {
        two.Write(name);
        CHECK(two.Find(u"IMAGE:Logo", 3) == name);
    }
    CHECK(two.Find(u"Logo.tif", 3) == "shipped/Custom Art/Logo.tif");
    CHECK(two.Find(u"Logo", 3) == "");
    CHECK(two.Find(u"Logo.png", 4) == "");
    two.Write("shipped/Default Art/icons/Small.png");
    CHECK(two.Find(u"icons\\Small.png", 3) == "shipped/Default Art/icons/Small.png");
}

TEST_CASE("Pages come in the user's language where there is such a folder, or else in English")
{
    FakeTools& tools = FakeTools::Fresh();
    const TwoRoots two;
    two.Write("shipped/Default Webpages/English/a.html");
    two.Write("shipped/Default Webpages/German/a.html");
    two.Write("user/Custom Webpages/English/a.html");
    CHECK(two.Find(u"a.html", 7) == "shipped/Default Webpages/English/a.html");
    tools.language = u"German";
    CHECK(two.Find(u"a.html", 7) == "shipped/Default Webpages/German/a.html");
    CHECK(two.Find(u"a.html", 8) == "user/Custom Webpages/English/a.html");
    tools.language = u"..";
    CHECK(two.Find(u"a.html", 7) == "shipped/Default Webpages/English/a.html");
}

TEST_CASE("No name leads out of the folders of the data files")
{
    FakeTools::Fresh().language = u"../../secret";
    const TwoRoots two;
    two.Write("user/Custom Art/Logo.png");
    two.Write("user/secret.png");
    const OQString outside = two.roots.user + u"secret.png";
    for (const OQChar* name : { u"../secret.png", u"..\\secret.png", u"image:../secret",
             u"x/../../secret.png", u"image:..\\secret", u"", u"image:", u"." })
        CHECK(two.Find(name, 3) == "");
    CHECK(two.Find(outside.GetText(), 3) == "");
    CHECK(two.Find((u"image:" + outside.Left(outside.GetLength() - 4)).GetText(), 3) == "");
}
