#include "apps/player/PlayerSettings.h"

#include "TestFolder.h"
#include "TestFolderVariable.h"
#include "TestVariable.h"
#include "foundation/OQSiblingModules.h"

#include <doctest/doctest.h>

#include <QStringList>

using pxvis::player::PlayerSettings;

namespace {

// The process's store, in a folder of the test's own.
struct TestStore
{
    ~TestStore() { OQSiblingModules::Get().Unload(); }

    TestFolder folder;
    TestFolderVariable config { "XDG_CONFIG_HOME", folder.Path("").c_str() };
    std::string file = folder.Path("pxvis/settings.xml");
};

}

TEST_CASE("What the player remembers is there in its next run, for every device of its own")
{
    const TestStore store;
    PlayerSettings settings;
    CHECK(settings.Text("Output", "none") == "none");
    CHECK(settings.Number("Volume", 70) == 70);
    CHECK(settings.Delay("") == 0);

    const QString text = QString::fromUtf8("a<b> \"\xC3\xA4\xF0\x9F\x8E\xB5\"\\/&\n");
    settings.SetText("Output", text);
    settings.SetText("Nothing", "");
    settings.SetNumber("Volume", 40);
    settings.SetVisualNumber("Draw Method", 1);
    const QStringList devices { "", "(default)", "alsa.Hi-Fi", "alsa.hi-fi", "a\\b/c",
        "\xC3\x84 %" };
    for (int i = 0; i < devices.size(); ++i)
        settings.SetDelay(devices[i], 10 * i - 20);
    settings.SetDelay("far", 1'000'000);
    OQSiblingModules::Get().Unload();

    CHECK(settings.Text("Output") == text);
    CHECK(settings.Text("Nothing", "none").isEmpty());
    CHECK(settings.Number("Volume", 70) == 40);
    CHECK(settings.Number("Output", 7) == 7);
    CHECK(settings.VisualNumber("Draw Method", 2) == 1);
    for (int i = 0; i < devices.size(); ++i)
        CHECK(settings.Delay(devices[i]) == 10 * i - 20);
    CHECK(settings.Delay("far") == PlayerSettings::mostDelay);
    CHECK(
        BytesOf(store.file).find("Path=\"Plugins\\Display\\Visualizations\"") != std::string::npos);
}

TEST_CASE("A damaged settings file loses what is damaged and is kept beside the new one")
{
    const TestStore store;
    PlayerSettings settings;
    settings.SetNumber("Volume", 40);
    settings.SetNumber("Broken", 1);
    settings.SetText("Output", "speakers");
    settings.SetDelay("speakers", 120);
    settings.SetVisualNumber("Show FPS", 1);
    OQSiblingModules::Get().Unload();

    std::string bytes = BytesOf(store.file);
    const size_t at = bytes.find("Name=\"Broken\"");
    REQUIRE(at != std::string::npos);
    bytes.erase(bytes.find("</Item>", at), 7);
    std::ofstream(store.file, std::ios::binary) << bytes;

    settings.SetNumber("Position", 7);
    CHECK(settings.Number("Volume", 0) == 40);
    CHECK(settings.Text("Output") == "speakers");
    CHECK(settings.Delay("speakers") == 120);
    CHECK(settings.VisualNumber("Show FPS", 0) == 1);
    CHECK(settings.Number("Position", 0) == 7);
    int copies = 0;
    for (const auto& entry : std::filesystem::directory_iterator(store.folder / "pxvis"))
        copies += BytesOf(entry.path()) == bytes;
    CHECK(copies == 1);
}

TEST_CASE("Without a store that can be written the player goes on with what it has")
{
    const TestStore store;
    store.folder.Write("pxvis", "in the way of the folder");
    PlayerSettings settings;
    settings.SetNumber("Volume", 40);
    CHECK(settings.Number("Volume", 70) == 70);
    CHECK(settings.Text("Output", "none") == "none");
    CHECK(store.folder.Read("pxvis") == "in the way of the folder");
}
