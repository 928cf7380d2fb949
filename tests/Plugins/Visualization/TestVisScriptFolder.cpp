#include "Plugins/Visualization/VisScriptFolder.h"

#include "TestFolder.h"
#include "foundation/StringPrinting.h"

#include <doctest/doctest.h>
#include <filesystem>

namespace {

struct Scripts
{
    Scripts()
    {
        std::filesystem::create_directories(folder / "user/Visualizations/Vis Studio");
        std::filesystem::create_directories(folder / "shipped/Visualizations/Vis Studio");
    }

    void Add(const std::string& root, const std::string& name)
    {
        const std::string path = root + "/Visualizations/Vis Studio/" + name;
        std::filesystem::create_directories((folder / path).parent_path());
        folder.Write(path, "<PXV/>");
    }

    OQString Path(const std::string& root, const std::string& name) const
    {
        return OQString::FromUtf8(folder.Path(root + "/Visualizations/Vis Studio/" + name));
    }

    VisScriptFolder Make() const
    {
        return VisScriptFolder({ OQString::FromUtf8(folder.Path("user/")),
            OQString::FromUtf8(folder.Path("shipped/")) });
    }

    std::u16string Modes(const OQString& current, int32_t& position) const
    {
        return std::u16string(Make().ListModes(current, position).Join(u"|").View());
    }

    TestFolder folder;
};

}

TEST_CASE("Modes are all scripts of both roots, the deepest first, each folder with its cycle")
{
    Scripts scripts;
    scripts.Add("shipped", "Zero.pxv");
    scripts.Add("shipped", "Calm/harbour.pxv");
    scripts.Add("shipped", "Calm/Tide.pxv");
    scripts.Add("shipped", "Bright/Ember.pxv");
    scripts.Add("user", "Calm/Tide.pxv"); // once, though it is in both
    scripts.Add("user", "Calm/Mine/Own.pxv");
    scripts.Add("user", "Calm/no script.txt");
    scripts.Add("user", "no|mode.pxv");
    scripts.Add("user", "no\xffname.pxv");

    int32_t current = -2;
    const VisScriptFolder folder = scripts.Make();
    CHECK(scripts.Modes(folder.GetAllPath(), current)
        == u"Cycle All|Calm\\Cycle All|Calm\\Mine\\Cycle All|Calm\\Mine\\Own|"
           u"Bright\\Cycle All|Bright\\Ember|Calm\\harbour|Calm\\Tide|Zero");
    CHECK(current == 0);

    // Whatever mode is chosen is the current one, wherever its file lies.
    const OQStringArray modes = folder.ListModes({}, current);
    CHECK(current == -1);
    for (int i = 0; i < modes.GetCount(); ++i) {
        folder.ListModes(folder.GetModePath(modes[i]), current);
        CHECK(current == i);
    }
    folder.ListModes(scripts.Path("shipped", "Zero.pxv"), current); // from older settings
    CHECK(current == 8);
    folder.ListModes(folder.GetModePath(u"calm\\HARBOUR"), current);
    CHECK(current == 6);
}

TEST_CASE(
    "A mode's files are the user's before the shipped ones, and those of a folder with all below")
{
    Scripts scripts;
    scripts.Add("shipped", "Zero.pxv");
    scripts.Add("shipped", "Calm/Tide.pxv");
    scripts.Add("shipped", "Calm/Harbour.PXV");
    scripts.Add("user", "Calm/Tide.pxv");
    scripts.Add("user", "Calm/Mine/Own.pxv");
    const VisScriptFolder folder = scripts.Make();
    const auto find = [&](const OQChar* mode) {
        return folder.FindScripts(folder.GetModePath(mode)).Join(u"|");
    };
    const OQString tide = scripts.Path("user", "Calm/Tide.pxv");
    const OQString harbour = scripts.Path("shipped", "Calm/Harbour.PXV");
    const OQString own = scripts.Path("user", "Calm/Mine/Own.pxv");
    const OQString zero = scripts.Path("shipped", "Zero.pxv");

    CHECK(find(u"Calm\\Tide") == tide);
    CHECK(find(u"Calm\\Harbour") == harbour);
    CHECK(find(u"calm\\tide") == tide);
    CHECK(find(u"Calm\\cycle all") == harbour + u"|" + own + u"|" + tide);
    CHECK(find(u"Cycle All") == harbour + u"|" + own + u"|" + tide + u"|" + zero);
    // It may come later.
    CHECK(find(u"Missing") == scripts.Path("user", "Missing.pxv"));
    CHECK(find(u"Missing\\Cycle All") == u"");

    // A path that somebody wrote into the settings.
    CHECK(folder.FindScripts(u"/elsewhere/x.pxv").Join(u"|") == u"/elsewhere/x.pxv");
    CHECK(folder.FindScripts(OQString::FromUtf8(scripts.folder.Path("user/*.*"))).Join(u"|")
        == own + u"|" + tide);
    OQString all = folder.GetModePath(u"Calm\\Cycle All");
    all.Replace(u'/', u'\\');
    CHECK(folder.FindScripts(all).GetCount() == 3);
    int32_t current = -1;
    const OQStringArray modes = folder.ListModes(all, current);
    REQUIRE(current >= 0);
    CHECK(modes[current] == u"Calm\\Cycle All");
}

TEST_CASE("No mode leads out of the folder of scripts")
{
    Scripts scripts;
    scripts.folder.Write("user/Visualizations/secret.pxv", "<PXV/>");
    const VisScriptFolder folder = scripts.Make();
    for (const OQChar* mode :
        { u"..\\secret", u"../secret", u"\\..\\secret", u"Calm\\..\\..\\secret" })
        CHECK(folder.FindScripts(folder.GetModePath(mode)).Join(u"|") == u"");
    CHECK(folder.FindScripts(folder.GetModePath(u"..\\Cycle All")).IsEmpty());
}
