#include "TestFolder.h"
#include "os/Clock.h"
#include "os/FileLock.h"

#include <doctest/doctest.h>
#include <sys/wait.h>
#include <unistd.h>

using pxvis::os::FileLock;

TEST_CASE("A lock has one holder, and who waits for it waits no longer than told")
{
    const TestFolder folder;
    const std::string path = folder.Path("lock");
    FileLock first;
    FileLock second;
    REQUIRE(first.Acquire(path, 0));
    CHECK_FALSE(second.Acquire(path, 0));
    const int64_t start = pxvis::os::MonotonicNanoseconds();
    CHECK_FALSE(second.Acquire(path, 30));
    CHECK(pxvis::os::MonotonicNanoseconds() - start >= 30'000'000);
    first.Release();
    CHECK(second.Acquire(path, 0));
    second.Release();
    CHECK(folder.Names() == "lock ");
}

TEST_CASE("A lock ends with its process, and isn't kept by a process that came of it")
{
    const TestFolder folder;
    const std::string path = folder.Path("lock");
    FileLock lock;
    REQUIRE(lock.Acquire(path, 0));
    const pid_t child = fork();
    REQUIRE(child >= 0);
    if (child == 0) {
        pause();
        _exit(0);
    }
    lock.Release();
    FileLock other;
    CHECK(other.Acquire(path, 0));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    other.Release();

    int ends[2] = {};
    REQUIRE(pipe(ends) == 0);
    const pid_t holder = fork();
    REQUIRE(holder >= 0);
    if (holder == 0) {
        FileLock held;
        const char done = held.Acquire(path, 1000) ? 'y' : 'n';
        if (write(ends[1], &done, 1) == 1)
            pause();
        _exit(0);
    }
    char done = 0;
    CHECK(read(ends[0], &done, 1) == 1);
    CHECK(done == 'y');
    CHECK_FALSE(other.Acquire(path, 0));
    kill(holder, SIGKILL);
    waitpid(holder, nullptr, 0);
    CHECK(other.Acquire(path, 0));
    close(ends[0]);
    close(ends[1]);
}

TEST_CASE("What is no file of its own can't be a lock")
{
    const TestFolder folder;
    FileLock lock;
    CHECK_FALSE(lock.Acquire("", 0));
    CHECK_FALSE(lock.Acquire(folder.Path("none/lock"), 0));
    std::filesystem::create_directory(folder.Path("folder"));
    CHECK_FALSE(lock.Acquire(folder.Path("folder"), 0));
    folder.Write("file", "");
    std::filesystem::create_symlink("file", folder.Path("link"));
    CHECK_FALSE(lock.Acquire(folder.Path("link"), 0));
}
