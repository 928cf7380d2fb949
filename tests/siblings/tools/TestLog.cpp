#include "foundation/OQFormat.h"
#include "siblings/tools/ToolsTesting.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <vector>

namespace fs = std::filesystem;

namespace {

const std::string kLog = "state/pxvis/pxvis.log";

void Write(TestTools& tools, int32_t level, const OQChar* text,
    const std::vector<OQFormatArgument>& arguments = {})
{
    tools->GetLog(1)->Write(
        level, u"Class::Operation", text, arguments.data(), static_cast<int32_t>(arguments.size()));
}

int32_t CountLines(const std::string& text)
{
    return static_cast<int32_t>(std::count(text.begin(), text.end(), '\n'));
}

// What a child process of these tests leaves on its standard error.
template <class Work>
std::string StandardErrorOf(const TestFolder& folder, Work work)
{
    const pid_t child = fork();
    REQUIRE(child >= 0);
    if (child == 0) {
        if (!freopen(folder.Path("stderr").c_str(), "w", stderr))
            _exit(1);
        work();
        _exit(0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    CHECK(status == 0);
    return folder.Read("stderr");
}

}

TEST_CASE("A line of the log tells time, level, place and text, and arguments stay in their line")
{
    TestTools tools;
    const OQString odd = u"a\r\nb\x1B[2J\u009B\u2028\u202E\u00E4\x7F";
    Write(tools, OQLogError, u"%s is %d", { odd, 3 });
    const std::string line = tools.folder.Read(kLog);
    CHECK(line.ends_with(" error Class::Operation: "
                         "a\\x0D\\x0Ab\\x1B[2J\\x9B\\x2028\\x202E\u00E4\\x7F is 3\n"));
    CHECK(line.starts_with("20"));
    CHECK(CountLines(line) == 1);

    tools->GetLog(1)->Write(OQLogError, nullptr, nullptr, nullptr, 5);
    Write(tools, -1, OQString::FromUtf8(std::string(100000, 'x')).GetText());
    CHECK(CountLines(tools.folder.Read(kLog)) == 3);
    CHECK(tools.folder.Read(kLog).size() < 10000);
}

TEST_CASE("The level of the log is 2, a setting, or what the environment says")
{
    const auto levels = [](TestTools& tools) {
        for (const int32_t level : { 1, 2, 3, 4, 5 })
            Write(tools, level, u"text");
        const int32_t lines = CountLines(tools.folder.Read(kLog));
        tools.Restart();
        fs::remove(tools.folder.Path(kLog));
        tools.Restart();
        return lines;
    };
    TestTools tools;
    CHECK(levels(tools) == 2);
    CHECK(tools.Key(u"Log")->SetInt(u"Level", 3));
    tools.Restart();
    CHECK(levels(tools) == 3);
    for (const auto& [text, lines] :
        { std::pair { "4", 4 }, { "error", 1 }, { "info", 3 }, { "0", 0 }, { "loud", 3 } }) {
        const TestVariable variable("PXVIS_LOG_LEVEL", text);
        tools.Restart();
        CHECK(levels(tools) == lines);
    }
}

TEST_CASE("Nothing is said on standard error unless that is asked for")
{
    TestTools tools;
    const auto work = [&] {
        Write(tools, OQLogError, u"one");
        Write(tools, OQLogInfo, u"three");
    };
    CHECK(StandardErrorOf(tools.folder, work).empty());
    {
        const TestVariable variable("PXVIS_LOG", "stderr");
        CHECK(CountLines(StandardErrorOf(tools.folder, work)) == 1);
    }
    const TestVariable variable("PXVIS_LOG", "stderr:info");
    CHECK(CountLines(StandardErrorOf(tools.folder, work)) == 2);
    CHECK(CountLines(tools.folder.Read(kLog)) == 3); // one of each run
}

TEST_CASE("A folder that can't be written means no log and no complaint")
{
    TestTools tools;
    tools.folder.Write("state", "a file");
    CHECK(StandardErrorOf(tools.folder, [&] {
        for (int i = 0; i < 3; ++i)
            Write(tools, OQLogError, u"text");
        tools->PrepareToUnload();
    }).empty());

    fs::remove(tools.folder.Path("state"));
    fs::create_directories(tools.folder.Path("state/pxvis"));
    REQUIRE(mkfifo(tools.folder.Path(kLog).c_str(), 0600) == 0);
    Write(tools, OQLogError, u"text"); // doesn't wait for a reader
}

TEST_CASE("The log starts afresh when it is full and keeps two older files")
{
    TestTools tools;
    const std::string text(4000, 'x');
    const OQString wide = OQString::FromUtf8(text);
    for (int i = 0; i < 1400; ++i)
        Write(tools, OQLogError, u"%s", { wide });
    int files = 0;
    for (const auto& entry : fs::directory_iterator(tools.folder.Path("state/pxvis"))) {
        ++files;
        CHECK(fs::file_size(entry) <= 1024 * 1024);
    }
    CHECK(files == 3);
}

TEST_CASE("Lines may be written after the end of the module")
{
    TestTools tools;
    IOQLog* log = tools->GetLog(1);
    Write(tools, OQLogError, u"before");
    {
        TestTools other;
        other.Restart();
    }
    log->Write(OQLogError, u"Test", u"after", nullptr, 0);
    CHECK(CountLines(tools.folder.Read(kLog)) == 2);
}
