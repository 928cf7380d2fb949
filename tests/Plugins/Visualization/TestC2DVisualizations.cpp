#include "Plugins/Visualization/C2DVisualizations.h"

#include "HostTesting.h"
#include "TestFolder.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <vector>

namespace {

struct TestMenu final : IOQMenu
{
    struct Item
    {
        int32_t id;
        std::u16string text;
        uint32_t flags;
    };

    void AddItem(int32_t id, const char16_t* text, uint32_t flags) override
    {
        items.push_back({ id, text, flags });
    }

    void AddSeparator() override { }

    IOQMenu* AddSubmenu(const char16_t* text) override
    {
        submenuText = text;
        submenu = std::make_unique<TestMenu>();
        return submenu.get();
    }

    std::vector<Item> items;
    std::u16string submenuText;
    std::unique_ptr<TestMenu> submenu;
};

}

TEST_CASE("The picture is the window, or as large a picture of its shape as the quality allows")
{
    const auto size = [](int32_t width, int32_t height, int32_t quality) {
        return C2DVisualizations::PictureSizeFor({ width, height }, quality);
    };
    CHECK(size(600, 500, 3) == OQSize { 600, 500 });
    CHECK(size(1000, 1000, 3) == OQSize { 391, 391 });
    CHECK(size(640, 480, 3) == OQSize { 482, 362 }); // as many pixels as the limit are too many
    CHECK(size(1280, 720, 3) == OQSize { 590, 332 });
    CHECK(size(1280, 720, 1) == OQSize { 295, 166 });
    CHECK(size(1920, 1080, 5) == OQSize { 1477, 831 });
    CHECK(size(1, 0, 3) == OQSize { 8, 8 });
    CHECK(size(3, 100, 3) == OQSize { 8, 100 });
    CHECK(size(30000, 30000, 1).cx < 300);
    CHECK(size(20, 30000, 1) == OQSize { 5, 277 });
}

TEST_CASE("The menu offers the qualities, and the choice is kept")
{
    C2DVisualizations visualization(nullptr);
    TestMenu menu;
    CHECK_FALSE(visualization.BuildMenu(&menu, 1));
    CHECK_FALSE(visualization.BuildMenu(nullptr, 0));
    REQUIRE(visualization.BuildMenu(&menu, 0));
    CHECK(menu.submenuText == u"Display Quality");
    REQUIRE(menu.submenu);
    REQUIRE(menu.submenu->items.size() == 5);
    CHECK(menu.submenu->items.front().id == 1015);
    CHECK(menu.submenu->items.front().text == u"Highest Quality (slowest)");
    CHECK(menu.submenu->items.back().id == 1011);

    for (const int32_t id : { 1011, 1015 }) {
        const VisMenuCommand command { id, u"" };
        CHECK(visualization.OnMenuCommand(&command));
        TestMenu now;
        CHECK(C2DVisualizations(nullptr).BuildMenu(&now, 0)); // from the settings
        for (const TestMenu::Item& item : now.submenu->items)
            CHECK(item.flags == (item.id == id ? VisMenuChecked : 0u));
    }
    const VisMenuCommand beyond { 1019, u"" };
    CHECK(visualization.OnMenuCommand(&beyond));
    CHECK(visualization.GetDisplayQuality() == 5);
    for (const int32_t id : { 0, 1002, 1009, 1020 }) {
        const VisMenuCommand command { id, u"" };
        CHECK_FALSE(visualization.OnMenuCommand(&command));
    }
    CHECK_FALSE(visualization.OnMenuCommand(nullptr));
}

TEST_CASE("A setting that is no number counts as none, and numbers out of bounds do no harm")
{
    const VisualizationSettings settings(u"Plugins\\Display\\Visualizations");
    for (const OQChar* name :
        { u"Draw Method", u"Show FPS", u"Script Cycle MS", u"Display Quality", u"Flash Limit" })
        settings.WriteString(name, u"blue");
    C2DVisualizations defaults(nullptr);
    CHECK(defaults.GetDrawMethod() == C2DVisualizations::DrawDirect);
    CHECK_FALSE(defaults.GetShowFrameRate());
    CHECK(defaults.GetScriptCycle() == 10000);
    CHECK(defaults.GetDisplayQuality() == 3);
    CHECK(defaults.GetFlashLimit());

    settings.WriteInt(u"Display Quality", -7);
    CHECK(C2DVisualizations(nullptr).GetDisplayQuality() == 1);
    settings.WriteInt(u"Display Quality", 3);

    defaults.SetDrawMethod(C2DVisualizations::DrawStandard);
    defaults.SetScriptCycle(20000);
    defaults.SetShowFrameRate(true);
    defaults.SetFlashLimit(false);
    C2DVisualizations kept(nullptr);
    CHECK(kept.GetDrawMethod() == C2DVisualizations::DrawStandard);
    CHECK(kept.GetScriptCycle() == 20000);
    CHECK(kept.GetShowFrameRate());
    CHECK_FALSE(kept.GetFlashLimit());
}

TEST_CASE("The host's data object is the address that its property tells, or none")
{
    TestHost host;
    C2DVisualizations visualization(&host);
    IVisAudioData* data = visualization.GetAudioData();
    REQUIRE(data == host.audio);
    delete data;
    host.givesData = false;
    for (const char16_t* text : { u"", u"0x", u"xyz", u"0" }) {
        host.properties[u"Legacy Data Object"] = text;
        CHECK(visualization.GetAudioData() == nullptr);
    }
    host.properties[u"Legacy Data Object"] = u"7fffDEADbeef0 trailing";
    CHECK(reinterpret_cast<uintptr_t>(visualization.GetAudioData()) == 0x7fffdeadbeef0);
    CHECK(C2DVisualizations(nullptr).GetAudioData() == nullptr);
}

TEST_CASE("Modes can be chosen with no window, and the choice outlives the object")
{
    C2DVisualizations visualization(nullptr);
    const std::u16string modes = PropertyOf(visualization, u"Modes");
    CHECK(modes.starts_with(u"Cycle All|"));
    CHECK(modes.find(u"|Calm\\Cycle All|") != std::u16string::npos);
    CHECK(visualization.SetProperty(u"Current Mode", u"Retro\\Harbour"));
    CHECK(PropertyOf(visualization, u"Current Mode") == u"Retro\\Harbour");
    C2DVisualizations next(nullptr);
    CHECK(PropertyOf(next, u"Current Mode") == u"Retro\\Harbour");
    CHECK(next.SetMode(u"Calm\\CYCLE ALL"));
    CHECK(PropertyOf(next, u"Current Mode") == u"Calm\\Cycle All");
    CHECK(next.SetMode(nullptr)); // a script that isn't there
    CHECK(PropertyOf(next, u"Current Mode") == u"");
    CHECK(next.SetMode(u"Cycle All"));
}

TEST_CASE("A script file from anywhere is told and ends, and is no mode")
{
    const TestFolder folder;
    folder.Write("mine.pxv", "<PXV Version=\"1.0\"></PXV>");
    folder.Write("song.pxv", "no script");
    const std::string path = folder.Path("mine.pxv");
    const std::u16string mine(path.begin(), path.end());
    const auto with
        = [&](const char16_t* name) { return mine.substr(0, mine.rfind(u'/') + 1) + name; };
    C2DVisualizations visualization(nullptr);
    const auto set = [&](const std::u16string& file) {
        return visualization.SetProperty(u"script FILE", file.c_str());
    };
    const auto file = [&] { return PropertyOf(visualization, u"Script File"); };
    CHECK(visualization.SetMode(u"Calm\\Cycle All"));
    CHECK(file() == u"");
    CHECK(set(u"")); // nothing to end
    REQUIRE(set(mine));
    CHECK(file() == mine);
    const auto fault = [&] { return PropertyOf(visualization, u"Script Fault"); };
    CHECK(fault().starts_with(u"mine.pxv, line 1: the script holds no component"));
    folder.Write("mine.pxv", "<PXV Version=\"1.0\"><Comp");
    CHECK(fault().find(u"cut off") != std::u16string::npos);
    CHECK(PropertyOf(visualization, u"Current Mode") == u"Calm\\Cycle All");
    for (const std::u16string& refused : { with(u"other.pxv"), with(u"song.pxv"), with(u""),
             std::u16string(u"mine.pxv"), std::u16string(u"http://127.0.0.1/mine.pxv") }) {
        CHECK_FALSE(set(refused));
        CHECK(file() == mine);
    }
    CHECK(fault() == u"mine.pxv: there is no such script");
    std::u16string windows = mine;
    std::replace(windows.begin(), windows.end(), u'/', u'\\');
    CHECK(set(windows));
    CHECK(file() == mine);
    CHECK(visualization.SetProperty(u"Script File", nullptr));
    CHECK(file() == u"");
    REQUIRE(set(mine));
    CHECK(visualization.SetMode(u"Retro\\Harbour"));
    CHECK(file() == u"");
    CHECK(PropertyOf(visualization, u"Current Mode") == u"Retro\\Harbour");
    CHECK(visualization.SetMode(u"Cycle All"));
}
