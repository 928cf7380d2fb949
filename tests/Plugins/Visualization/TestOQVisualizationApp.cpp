#include "Plugins/Visualization/OQVisualizationApp.h"

#include "foundation/OQSiblingModules.h"

#include <doctest/doctest.h>

TEST_CASE("The library's object starts at the first call, as far as its siblings are there")
{
    REQUIRE(OQApp::Get() != nullptr);
    CHECK(OQApp::Get()->WantsSiblings());
    const bool hasTools = OQSiblingModules::Get().Tools() != nullptr;
    CHECK(OQVisualizationApp::Attach() == hasTools);
    CHECK(OQVisualizationApp::Attach() == hasTools);
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
