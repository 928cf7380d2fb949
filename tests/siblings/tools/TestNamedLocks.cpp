#include "SlotOf.h"
#include "foundation/IOQNamedLocks.h"
#include "os/Clock.h"
#include "siblings/tools/ToolsTesting.h"

#include <csignal>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

using Held = std::unique_ptr<IOQNamedLock>;

Held Acquire(TestTools& tools, const OQString& name, int32_t wait = 0)
{
    return Held(tools->GetNamedLocks(1)->Acquire(name.GetText(), wait));
}

}

TEST_CASE("A name has one holder, for whom others wait no longer than they said")
{
    TestTools tools;
    Held first = Acquire(tools, u"Tarnwick Lock");
    REQUIRE(first);
    CHECK(Acquire(tools, u"Tarnwick lock"));
    CHECK_FALSE(Acquire(tools, u"Tarnwick Lock"));
    const int64_t start = pxvis::os::MonotonicNanoseconds();
    CHECK_FALSE(Acquire(tools, u"Tarnwick Lock", 30));
    CHECK(pxvis::os::MonotonicNanoseconds() - start >= 30'000'000);
    first.reset();
    CHECK(Acquire(tools, u"Tarnwick Lock", -1));
    CHECK(SlotOf(&IOQNamedLocks::Acquire) == 0);
}

TEST_CASE("Whatever a lock is called, its file lies in the folder that is the user's alone")
{
    TestTools tools;
    const OQString a = OQString::FromUtf8(std::string(5000, 'a'));
    const OQString names[] = { u"../x", u"..", u".", u"/", u"/etc/passwd", u"a/b", u"a\\b", u"%2F",
        u"\u00E4\n", a, a + u"b", u"%" };
    std::vector<Held> held;
    for (const OQString& name : names)
        held.push_back(Acquire(tools, name));
    for (const Held& one : held)
        CHECK(one);
    CHECK_FALSE(Acquire(tools, u""));
    CHECK_FALSE(tools->GetNamedLocks(1)->Acquire(nullptr, 0));
    CHECK(tools.folder.Names() == "pxvis ");
    size_t files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(tools.folder.Path("pxvis"))) {
        CHECK(entry.is_regular_file());
        ++files;
    }
    CHECK(files == std::size(names));

    struct stat status
    {
    };

    CHECK(stat(tools.folder.Path("pxvis").c_str(), &status) == 0);
    CHECK((status.st_mode & 0777) == 0700);
}

TEST_CASE("A folder that others may write to, or lead elsewhere, holds no locks")
{
    TestTools tools;
    fs::create_directory(tools.folder.Path("temporary"));
    const TestVariable temporary("TMPDIR", tools.folder.Path("temporary").c_str());
    const std::string own = tools.folder.Path("temporary/pxvis-" + std::to_string(geteuid()));
    fs::create_directory_symlink("/tmp", tools.folder.Path("pxvis"));
    CHECK(Acquire(tools, u"x"));
    CHECK(fs::exists(own + "/x.lock"));
    REQUIRE(chmod(own.c_str(), 0770) == 0);
    CHECK_FALSE(Acquire(tools, u"x"));
    fs::remove(tools.folder.Path("pxvis"));
    CHECK(Acquire(tools, u"x"));
}

TEST_CASE("Another process's lock is seen, and ends with the process")
{
    TestTools tools;
    IOQNamedLocks* locks = tools->GetNamedLocks(1);
    int ends[2] = {};
    REQUIRE(pipe(ends) == 0);
    const pid_t holder = fork();
    REQUIRE(holder >= 0);
    if (holder == 0) {
        const char done = locks->Acquire(u"shared", 1000) ? 'y' : 'n';
        if (write(ends[1], &done, 1) == 1)
            pause();
        _exit(0);
    }
    char done = 0;
    CHECK(read(ends[0], &done, 1) == 1);
    CHECK(done == 'y');
    CHECK_FALSE(Acquire(tools, u"shared", 10));
    kill(holder, SIGKILL);
    waitpid(holder, nullptr, 0);
    CHECK(Acquire(tools, u"shared", 1000));
    close(ends[0]);
    close(ends[1]);
}
