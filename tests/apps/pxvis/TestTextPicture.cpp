#include "TestFolder.h"
#include "TestFolderVariable.h"
#include "apps/pxvis/RenderCommand.h"

#include <doctest/doctest.h>

#include <sstream>

namespace {

// The picture of a text at 5.5 s of the demo song.
std::string Render(const TestFolder& folder, const std::string& text)
{
    folder.Write("text.pxv",
        "<PXV Version=\"1.0\">\r\n<Layer>\r\n<Properties>\r\n"
        "<ClearEachFrame>1</ClearEachFrame>\r\n</Properties>\r\n"
        "<Component GUID=\"BBEC668A-420F-4faa-856D-880DACE05B5B\" Name=\"Text\">\r\n"
        "<Properties>\r\n<FontSize>0.03</FontSize>\r\n<Text>"
            + text + "</Text>\r\n</Properties>\r\n</Component>\r\n</Layer>\r\n</PXV>\r\n");
    pxvis::RenderOptions options;
    options.song = PXVIS_SOURCE_DIR "/data/demo/pxvis-demo.opus";
    options.output = folder.Path("out.png");
    options.script = folder.Path("text.pxv");
    options.width = 320;
    options.height = 120;
    options.at = 5.5;
    options.replace = true;
    std::ostringstream errors;
    REQUIRE_MESSAGE(pxvis::RunRender(options, errors) == 0, errors.str());
    return folder.Read("out.png");
}

}

TEST_CASE("A text in a picture tells of the song and of the moment")
{
    const TestFolder folder;
    const TestVariable cache("XDG_CACHE_HOME", folder.Path("cache").c_str());
    const TestFolderVariable data("XDG_DATA_HOME", folder.Path("data").c_str());
    const std::string told = Render(folder, "NAME ELAPSED_TIME TOTAL_TIME");
    CHECK(told == Render(folder, "First Light 0:05 0:48"));
    CHECK(told != Render(folder, "First Light 0:06 0:48"));
}
