#include "foundation/OQScopeLog.h"
#include "foundation/files/FakeTools.h"

#include <doctest/doctest.h>

TEST_CASE("A scope logs its start, its end and its result, if the log is on for its level")
{
    FakeTools& tools = FakeTools::Fresh();
    {
        const OQScopeLog scope(OQLogInfo, u"Test::First");
    }
    {
        OQScopeLog scope(OQLogInfo, u"Test::Second");
        scope.SetResult(-7);
    }
    REQUIRE(tools.log.size() == 4);
    CHECK(tools.log[0] == "Test::First: Start");
    CHECK(tools.log[1].starts_with("Test::First: Finish ("));
    CHECK(tools.log[1].ends_with(" ms)"));
    CHECK(tools.log[2] == "Test::Second: Start");
    CHECK(tools.log[3].starts_with("Test::Second: Finish (result: -7) ("));

    tools.log.clear();
    tools.logLevel = OQLogWarning;
    CHECK_FALSE(OQLogIsOn(OQLogInfo));
    {
        const OQScopeLog scope(OQLogInfo, u"Test::Third");
        tools.logLevel = OQLogInfo;
    }
    CHECK(tools.log.empty());
    tools.logLevel = OQLogDebug;
}
