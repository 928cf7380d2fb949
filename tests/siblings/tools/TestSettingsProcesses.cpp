#include "siblings/tools/ToolsTesting.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <random>

namespace {

// A child process that runs `work` and tells numbers through a pipe.
class Child
{
public:
    template <class Work>
    explicit Child(Work work)
    {
        int ends[2] = {};
        REQUIRE(pipe(ends) == 0);
        m_process = fork();
        REQUIRE(m_process >= 0);
        if (m_process == 0) {
            close(ends[0]);
            work([&](int32_t number) {
                if (write(ends[1], &number, sizeof number) != sizeof number)
                    _exit(3);
            });
            _exit(0);
        }
        close(ends[1]);
        m_pipe = ends[0];
    }

    ~Child()
    {
        if (m_process > 0)
            Kill();
        close(m_pipe);
    }

    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    void Kill()
    {
        kill(m_process, SIGKILL);
        Wait();
    }

    int Wait()
    {
        int status = -1;
        waitpid(m_process, &status, 0);
        m_process = 0;
        return status;
    }

    // False at the end.
    bool Read(int32_t& number) const
    {
        return read(m_pipe, &number, sizeof number) == sizeof number;
    }

private:
    pid_t m_process = 0;
    int m_pipe = -1;
};

OQString Name(const OQChar* letter, int number)
{
    return letter + OQString::FromUtf8(std::to_string(number));
}

}

TEST_CASE("Two processes that write at once lose nothing")
{
    constexpr int count = 200;
    TestTools tools;
    const auto writer = [&](const OQChar* letter) {
        return [&tools, letter](auto) {
            const auto key = tools.Key(u"Shared");
            for (int i = 0; i < count; ++i) {
                if (!key || !key->SetInt(Name(letter, i).GetText(), i))
                    _exit(1);
            }
        };
    };
    Child first(writer(u"a"));
    Child second(writer(u"b"));
    CHECK(first.Wait() == 0);
    CHECK(second.Wait() == 0);
    const auto key = tools.Key(u"Shared", false);
    REQUIRE(key);
    for (int i = 0; i < count; ++i) {
        CHECK(key->GetInt(Name(u"a", i).GetText(), -1) == i);
        CHECK(key->GetInt(Name(u"b", i).GetText(), -1) == i);
    }
}

TEST_CASE("A reader sees what another process has just written")
{
    TestTools tools;
    const auto key = tools.Key(u"Shared");
    key->SetInt(u"n", 1000);
    // All numbers of one length, so that size alone tells nothing.
    const Child child([&](auto tell) {
        const auto written = tools.Key(u"Shared");
        for (int i = 1001; i < 1100 && written->SetInt(u"n", i); ++i)
            tell(i);
    });
    int32_t number = 0;
    int32_t told = 0;
    while (child.Read(number)) {
        told = number;
        CHECK(key->GetInt(u"n", 0) >= number);
    }
    CHECK(told == 1099);
    CHECK(key->GetInt(u"n", 0) == 1099);
}

TEST_CASE("A process killed at any moment leaves a whole file with what it had promised")
{
    constexpr int rounds = 100;
    TestTools tools;
    tools.Key(u"Other")->SetString(u"kept", u"yes");
    std::mt19937 random(1);
    int32_t promised = 0;
    for (int round = 0; round < rounds; ++round) {
        Child child([&](auto tell) {
            const auto key = tools.Key(u"Counter");
            for (int32_t i = promised + 1; key->SetInt(u"n", i); ++i)
                tell(i);
        });
        int32_t number = 0;
        if (round % 2)
            child.Read(number); // some at least get as far as a write
        usleep(random() % 30000);
        child.Kill();
        promised = std::max(promised, number);
        while (child.Read(number))
            promised = number;
        const auto key = tools.Key(u"Counter");
        const int32_t found = key->GetInt(u"n", 0);
        CHECK(found >= promised);
        CHECK(found <= promised + 1); // done but not yet told
        promised = found;
        CHECK(ValueOf(*tools.Key(u"Other", false), u"kept") == "yes");
    }
    CHECK(promised > rounds / 2);
    CHECK_FALSE(std::filesystem::exists(tools.folder.Path("config/pxvis/settings.xml.damaged-1")));
    for (const auto& entry :
        std::filesystem::directory_iterator(tools.folder.Path("config/pxvis"))) {
        const std::string name = entry.path().filename();
        CHECK(
            (name == "settings.xml" || name == "settings.xml.lock" || name == ".settings.xml.new"));
    }
}
