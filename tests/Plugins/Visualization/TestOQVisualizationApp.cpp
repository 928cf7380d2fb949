#include "Plugins/Visualization/OQVisualizationApp.h"

#include <doctest/doctest.h>

TEST_CASE("The library's object starts at the first call")
{
    REQUIRE(OQApp::Get() != nullptr);
    CHECK(OQApp::Get()->WantsSiblings());
    CHECK(OQVisualizationApp::Attach());
    CHECK(OQVisualizationApp::Attach());
    CHECK(OQApp::Get()->GetArguments().GetCount() > 0);
}

TEST_CASE("Without a wish for siblings it starts without them, and stopping is always fine")
{
    struct Alone final : OQVisualizationApp
    {
        bool WantsSiblings() override { return false; }

        bool LoadSiblings() override
        {
            FAIL("not asked for");
            return false;
        }
    };

    Alone alone;
    CHECK(alone.Startup());
    CHECK(alone.Shutdown());
    CHECK(alone.Shutdown());
}
