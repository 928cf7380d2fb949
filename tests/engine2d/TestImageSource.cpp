#include "engine2d/ImageSource.h"

#include "TestFolder.h"
#include "VisTesting.h"
#include "foundation/OQDataRoots.h"

#include <doctest/doctest.h>

namespace {

// A folder of files, with the user's root and the shipped one in it.
struct Files
{
    TestFolder folder;
    OQDataRoots roots;
    TestAudio audio;

    Files()
    {
        roots.user = OQString::FromUtf8(folder.Path("user/"));
        roots.shipped = OQString::FromUtf8(folder.Path("shipped/"));
        for (const char* root : { "user/", "shipped/" })
            std::filesystem::create_directories(
                folder.Path(root + std::string("Visualizations/Vis Studio/Images")));
    }

    void WriteScripts(const std::string& root, const std::string& name) const
    {
        folder.Write(root + "/Visualizations/Vis Studio/" + name, "x");
    }

    // A path below the folder of scripts of a root as "root: name", any other as it is.
    std::string Resolve(const OQString& text)
    {
        OQString path = u"old";
        ResolveImage(path, text, audio, roots);
        std::string result = path.ToUtf8();
        for (const char* root : { "user", "shipped" }) {
            const std::string scripts
                = folder.Path(root + std::string("/Visualizations/Vis Studio/"));
            if (result.starts_with(scripts))
                return root + (": " + result.substr(scripts.size()));
        }
        return result;
    }
};

}

TEST_CASE(
    "A picture is looked for as it stands, with the scripts, with their images, then stood in")
{
    Files files;
    // From the last choice to the first: each new file wins.
    CHECK(files.Resolve(u"\\logo.png") == "\\logo.png");
    for (const char* name : { "Images/Default.gif", "Images/logo.png", "logo.png" }) {
        for (const char* root : { "shipped", "user" }) {
            files.WriteScripts(root, name);
            CHECK(files.Resolve(u"\\logo.png") == std::string(root) + ": " + name);
            CHECK(files.Resolve(u"logo.png") == std::string(root) + ": " + name);
        }
    }
    CHECK(files.Resolve(u"/\\/Images\\logo.png") == "user: Images/logo.png");
    files.folder.Write("here.png", "x");
    const std::string here = files.folder.Path("here.png");
    CHECK(files.Resolve(OQString::FromUtf8(here)) == here);
    OQString backslashes = OQString::FromUtf8(here);
    backslashes.Replace(u'/', u'\\');
    CHECK(files.Resolve(backslashes) == here);

    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(files.folder.Path(""));
    CHECK(files.Resolve(u"here.png") == "here.png");
    std::filesystem::current_path(before);
    CHECK(files.Resolve(u"here.png") == "user: Images/Default.gif");
}

TEST_CASE("The cover stands for its keyword, anywhere and in upper case only")
{
    Files files;
    files.WriteScripts("shipped", "Images/Default.gif");
    CHECK(files.Resolve(u"COVER_ART") == "shipped: Images/Default.gif"); // no cover: an empty path
    CHECK(files.Resolve(u"") == "shipped: Images/Default.gif");
    files.folder.Write("cover.jpg", "x");
    const std::string cover = files.folder.Path("cover.jpg");
    files.audio.coverFile = OQString::FromUtf8(cover).View();
    CHECK(files.Resolve(u"COVER_ART") == cover);
    CHECK(files.Resolve(u"Cover_Art") == "shipped: Images/Default.gif");
    files.audio.coverFile = u"cover";
    CHECK(files.Resolve(OQString::FromUtf8(files.folder.Path("COVER_ART.jpg"))) == cover);
    files.audio.coverFile = u"o";
    CHECK(files.Resolve(u"https://COVER_ARTCOVER_ART") == "https://oo");
}

TEST_CASE("A URL is never looked for on the disk and never loaded, and other starts are no URL")
{
    Files files;
    files.WriteScripts("shipped", "Images/Default.gif");
    CHECK(files.Resolve(u"http://x/y.png") == "http://x/y.png");
    CHECK(files.Resolve(u"https://x/y.png") == "https://x/y.png");
    CHECK(files.Resolve(u"HTTP://x/y.png") == "shipped: Images/Default.gif");
    CHECK(files.Resolve(u"ftp://x/y.png") == "shipped: Images/Default.gif");

    // A folder of that name in the working folder would make the URL a path.
    std::filesystem::create_directories(files.folder.Path("http:/x"));
    CDibBuffer picture;
    picture.MakeImages(8, 8);
    const std::string png = files.folder.Path("http:/x/y.png");
    REQUIRE(picture.GetImage(0)->SavePng(OQString::FromUtf8(png).GetText(), true));
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(files.folder.Path(""));
    CHECK(LoadImageSource(u"http:/x/y.png", files.audio, 4, 4) != nullptr);
    CHECK(LoadImageSource(u"http://x/y.png", files.audio, 4, 4) == nullptr);
    std::filesystem::current_path(before);
}
