#include "TestFolder.h"
#include "TestFolderVariable.h"
#include "VisTesting.h"
#include "apps/pxvis/Checked.h"
#include "apps/pxvis/ScriptSet.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <iterator>

TEST_CASE("check passes the shipped scripts")
{
    const Checked checked({ { PXVIS_SOURCE_DIR "/data" } });
    CHECK(checked.status == 0);
    CHECK(checked.text.empty());
    CHECK(checked.fault.empty());
}

TEST_CASE("check prints a finding a line, and no control character of the script")
{
    const TestFile script("check.pxv",
        "<PXV Version=\"1.0\">\n<Component GUID=\"36267E6D-70E1-435e-9E2A-428EEA2D3C7E\">"
        "<Properties>\n<OnEquation>&#27;[31m\"\xC2\x9B=</OnEquation></Properties></Component></"
        "PXV>");
    const Checked human({ { script.Path() } });
    CHECK(human.status == 1);
    INFO(human.text);
    CHECK(human.text.find(script.Path() + ":3:13: Flush \"OnEquation\": character ") == 0);
    CHECK(human.text.find('\n') == human.text.size() - 1);
    CHECK(human.text.find('\x1B') == std::string::npos);
    CHECK(human.text.find("\xC2\x9B") == std::string::npos);

    const Checked json({ { script.Path() }, true });
    INFO(json.text);
    CHECK(json.status == 1);
    CHECK(
        json.text.find("\",\"line\":3,\"column\":13,\"component\":\"Flush\",\"row\":\"OnEquation\","
                       "\"position\":")
        != std::string::npos);
    CHECK(json.text.find('\x1B') == std::string::npos);
}

TEST_CASE("A folder's name stands for the user's and the shipped scripts in it")
{
    const TestFolder folder;
    const TestFolderVariable data("XDG_DATA_HOME", folder.Path("data").c_str());
    const std::string own = "data/pxvis/Visualizations/Vis Studio/Dense";
    std::filesystem::create_directories(folder / own);
    folder.Write(own + "/Own.pxv", "<PXV Version=\"1.0\"/>");
    folder.Write(own + "/Sleeve.pxv", "<PXV Version=\"1.0\"/>"); // hides the shipped one
    std::string error;
    const auto scripts = pxvis::FindScripts("dense/", error);
    const auto ending = [&](const char* name) {
        std::vector<std::string> found;
        std::copy_if(scripts.begin(), scripts.end(), std::back_inserter(found),
            [name](const std::string& script) { return script.ends_with(name); });
        return found;
    };
    CHECK(ending("Dense/Own.pxv") == std::vector { folder.Path(own + "/Own.pxv") });
    CHECK(ending("Dense/Sleeve.pxv") == std::vector { folder.Path(own + "/Sleeve.pxv") });
    CHECK(ending("data/Visualizations/Vis Studio/Dense/Rosette.pxv").size() == 1u);
}

TEST_CASE("check goes on behind a script that can't be read")
{
    const TestFile empty("check.pxv", "<PXV Version=\"1.0\"/>");
    const Checked checked({ { "/nowhere.pxv", "/dev/null", empty.Path() } });
    CHECK(checked.status == 1);
    CHECK(checked.fault.find("pxvis: /nowhere.pxv: no such script;") == 0);
    CHECK(checked.fault.find("/dev/null: can't be read") != std::string::npos);
    CHECK(checked.text.find("draws nothing") != std::string::npos);
}
