#include "foundation/OQThread.h"

#include <doctest/doctest.h>

#include <csignal>
#include <stdexcept>
#include <thread>

namespace {

// Works until it is asked to stop.
class Waiting final : public OQThread
{
public:
    ~Waiting() override { Finish(); }

    bool wants = true;
    int runs = 0; // read after the thread's end

private:
    bool OnBeforeStart() override { return wants; }

    uint8_t Run() override
    {
        ++runs;
        while (!IsCancelled())
            std::this_thread::yield();
        return 7;
    }
};

class Quick final : public OQThread
{
public:
    explicit Quick(bool fails)
        : m_fails(fails)
    {
    }

    ~Quick() override { Finish(); }

private:
    uint8_t Run() override
    {
        if (m_fails)
            throw std::runtime_error("on purpose");
        return 3;
    }

    bool m_fails;
};

class Masked final : public OQThread
{
public:
    ~Masked() override { Finish(); }

private:
    uint8_t Run() override
    {
        sigset_t mask;
        pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        return sigismember(&mask, SIGINT) && sigismember(&mask, SIGUSR1);
    }
};

}

TEST_CASE("A thread leaves the process's signals to the threads of the host")
{
    Masked thread;
    REQUIRE(thread.Start());
    thread.Join();
    CHECK(thread.GetResult() == 1);
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    CHECK_FALSE(sigismember(&mask, SIGINT));
}

TEST_CASE("A thread that was never started stops at once and nothing changes")
{
    Waiting thread;
    CHECK(thread.Stop() == 1);
    CHECK_FALSE(thread.IsCancelled());
    thread.wants = false;
    CHECK_FALSE(thread.Start());
    CHECK(thread.GetStartCount() == 0);
    CHECK_FALSE(thread.IsRunning());
}

TEST_CASE("A running thread stays when started again, unless it is forced, and stops when asked")
{
    Waiting thread;
    REQUIRE(thread.Start());
    CHECK(thread.IsRunning());
    CHECK(thread.Start());
    CHECK(thread.GetStartCount() == 1);
    CHECK(thread.Start(0, true));
    CHECK(thread.GetStartCount() == 2);
    CHECK(thread.GetThreadId() > 0);
    CHECK(thread.Stop() == 7);
    CHECK_FALSE(thread.IsRunning());
    CHECK(thread.GetThreadId() == 0);
    CHECK(thread.GetResult() == 0);
    CHECK(thread.runs == 2);
    CHECK(thread.Stop() == 0);
    CHECK(thread.Start());
}

TEST_CASE("A thread may end by itself, and an exception ends it quietly")
{
    Quick thread(false);
    REQUIRE(thread.Start());
    thread.Join();
    CHECK_FALSE(thread.IsRunning());
    CHECK(thread.GetResult() == 3);
    CHECK_FALSE(thread.IsCancelled());

    Quick failing(true);
    REQUIRE(failing.Start());
    failing.Join();
    CHECK(failing.GetResult() == 0);
}
