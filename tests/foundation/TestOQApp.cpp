#include "foundation/OQApp.h"

#include "foundation/StringPrinting.h"

#include <doctest/doctest.h>

namespace {

struct CountingApp : OQDllApp
{
    bool Startup() override
    {
        ++starts;
        return startSucceeds;
    }

    bool Shutdown() override
    {
        ++stops;
        return true;
    }

    int32_t RunFromModule() override { return 7; }

    bool startSucceeds = true;
    int starts = 0;
    int stops = 0;
};

// Each argument in "<>".
std::string Split(const OQChar* line)
{
    std::string all;
    for (const OQString& argument : OQApp::SplitCommandLine(line))
        all += "<" + argument.ToUtf8() + ">";
    return all;
}

}

TEST_CASE("A command line is split at blanks, quotes hold together and always end an argument")
{
    CHECK(Split(u"") == "");
    CHECK(Split(u"  a  bc ") == "<a><bc>");
    CHECK(Split(u"\"a b\" c") == "<a b><c>");
    CHECK(Split(u"\"\"") == "<>");
    CHECK(Split(u"a \"\" b") == "<a><><b>");
    CHECK(Split(u"a\"b c\"d") == "<ab c><d>");
    CHECK(Split(u"a\"\"b") == "<a><b>");
    CHECK(Split(u"\"open to the end ") == "<open to the end >");
    CHECK(Split(u"a \"") == "<a>");
    CHECK(Split(u"a\tb") == "<a\tb>");
}

TEST_CASE("A quote behind an odd number of backslashes is a character, and all backslashes stay")
{
    CHECK(Split(u"\\\"a b\\\"") == "<\\\"a><b\\\">");
    CHECK(Split(u"\\\\\"a b\"") == "<\\\\a b>");
    CHECK(Split(u"\"a\\\" b\" c") == "<a\\\" b><c>");
    CHECK(Split(u"\"C:\\x\\\\\" d") == "<C:\\x\\\\><d>");
    CHECK(Split(u"\\a\"b\"") == "<\\ab>");
}

TEST_CASE("The first attach starts and the last detach stops, however they are nested")
{
    CHECK_FALSE(OQApp::ForwardProcessEvent(nullptr, OQProcessAttach, nullptr));
    int handle = 0;
    CountingApp app;
    CHECK(OQApp::Get() == &app);
    CHECK(OQApp::ForwardProcessEvent(&handle, OQProcessAttach, nullptr));
    CHECK(OQApp::ForwardProcessEvent(nullptr, OQProcessAttach, nullptr));
    CHECK(OQApp::ForwardProcessEvent(nullptr, 2, nullptr));
    CHECK(app.GetModule() == &handle);
    CHECK(app.starts == 1);
    REQUIRE(app.GetArguments().GetCount() > 0);
    CHECK(app.GetArguments()[0].EndsWith(u"test_foundation"));
    CHECK(OQApp::ForwardProcessEvent(nullptr, OQProcessDetach, nullptr));
    CHECK(app.stops == 0);
    CHECK(OQApp::ForwardProcessEvent(nullptr, OQProcessDetach, nullptr));
    CHECK(app.stops == 1);
}

TEST_CASE("A start that fails is stopped again and told")
{
    CountingApp app;
    app.startSucceeds = false;
    CHECK_FALSE(app.OnProcessEvent(nullptr, OQProcessAttach, nullptr));
    CHECK(app.stops == 1);
    CHECK(app.Run(nullptr, nullptr, u"x") == -1);

    CountingApp program;
    CHECK(program.Run(nullptr, nullptr, u"one \"two three\"") == 7);
    CHECK(program.GetArguments().GetCount() == 2);
    CHECK(program.starts == 1);
    CHECK(program.stops == 1);
}
