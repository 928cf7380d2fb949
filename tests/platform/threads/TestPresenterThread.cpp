#include "platform/PresenterThread.h"

#include <doctest/doctest.h>

#include <atomic>
#include <new>
#include <string>
#include <thread>

using namespace pxvis;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

namespace {

// What happened to the surfaces of a presenter, and what is to happen to them.
struct Stage
{
    std::atomic<int> surfaces = 0; // made so far
    std::atomic<int> destroyed = 0;
    std::atomic<int> frames = 0;
    std::atomic<int> torn = 0; // frames whose pixels aren't all of one picture
    std::atomic<uint32_t> last = 0; // pixel shown
    std::atomic<int> failing = 0; // so many surfaces fail at once
    std::atomic<bool> exposed = false; // until the next frame
    std::atomic<bool> gone = false;
    std::atomic<bool> throwing = false;
    std::atomic<bool> held = false; // frames last until this is false, or Break
    std::atomic<bool> broken = false;
};

class FakeSurface final : public PresenterSurface
{
public:
    explicit FakeSurface(Stage& stage)
        : m_stage(stage)
        , m_number(++stage.surfaces)
    {
    }

    ~FakeSurface() override { ++m_stage.destroyed; }

    ShowResult Show(const PresenterPicture& picture, int32_t, int32_t) override
    {
        if (m_stage.throwing)
            throw std::bad_alloc();
        if (m_number <= m_stage.failing)
            return ShowResult::MethodFailed;
        for (int i = 0; i < picture.width * picture.height; ++i)
            m_stage.torn += picture.bits[i] != picture.bits[0];
        m_stage.exposed = false;
        m_stage.last = picture.bits[0];
        ++m_stage.frames;
        while (m_stage.held && !m_stage.broken)
            std::this_thread::sleep_for(milliseconds(1));
        return m_stage.gone  ? ShowResult::WindowGone
            : m_stage.broken ? ShowResult::MethodFailed
                             : ShowResult::Shown;
    }

    bool IsExposed() override { return m_stage.exposed; }

    const char* Method() const override { return m_number == 1 ? "first" : "second"; }

private:
    Stage& m_stage;
    const int m_number;
};

class FakeSource final : public PresenterSurfaceSource
{
public:
    explicit FakeSource(Stage& stage)
        : m_stage(stage)
    {
    }

    std::unique_ptr<PresenterSurface> Next() override
    {
        if (m_stage.surfaces == 2 || m_stage.broken)
            return nullptr;
        return std::make_unique<FakeSurface>(m_stage);
    }

    void Break() override { m_stage.broken = true; }

private:
    Stage& m_stage;
};

bool PresentOne(PresenterThread& presenter, uint32_t pixel, int32_t size = 8)
{
    const std::vector<uint32_t> bits(size_t(size) * size_t(size), pixel);
    return presenter.Present({ bits.data(), size, size }, 100, 100);
}

template <class Condition>
bool HoldsSoon(Condition condition)
{
    for (int i = 0; i < 10000 && !condition(); ++i)
        std::this_thread::sleep_for(milliseconds(1));
    return condition();
}

}

TEST_CASE("Pictures arrive whole and in order, and the last one always does")
{
    Stage stage;
    PresenterThread presenter(std::make_unique<FakeSource>(stage));
    for (int i = 1; i <= 300; ++i)
        REQUIRE(PresentOne(presenter, uint32_t(i), i % 40 + 1));
    CHECK(HoldsSoon([&] { return stage.last == 300; }));
    CHECK(stage.torn == 0);
    CHECK(presenter.Method() == std::string("first"));
    CHECK(presenter.End());
    CHECK(stage.destroyed == 1);
    CHECK_FALSE(PresentOne(presenter, 1));
}

TEST_CASE("Behind a slow picture one waits, and the next replaces it after a frame's time")
{
    Stage stage;
    PresenterThread presenter(std::make_unique<FakeSource>(stage));
    stage.held = true;
    REQUIRE(PresentOne(presenter, 1));
    REQUIRE(HoldsSoon([&] { return stage.frames == 1; }));
    CHECK(PresentOne(presenter, 2));
    for (const uint32_t pixel : { 3u, 4u }) {
        const auto start = Clock::now();
        CHECK(PresentOne(presenter, pixel));
        CHECK(Clock::now() - start >= PresenterThread::longestWait);
    }
    stage.held = false;
    CHECK(HoldsSoon([&] { return stage.last == 4; }));
    CHECK(stage.frames == 2);
    CHECK(presenter.End());
}

TEST_CASE("A picture that the window lost is shown again, without being asked for")
{
    Stage stage;
    PresenterThread presenter(std::make_unique<FakeSource>(stage));
    CHECK(PresentOne(presenter, 7));
    REQUIRE(HoldsSoon([&] { return stage.frames == 1; }));
    std::this_thread::sleep_for(milliseconds(250));
    CHECK(stage.frames == 1);
    stage.last = 0;
    stage.exposed = true;
    CHECK(HoldsSoon([&] { return stage.last == 7; }));
    CHECK(PresentOne(presenter, 8));
    CHECK(HoldsSoon([&] { return stage.last == 8; }));
}

TEST_CASE("A method that fails is followed by the next one, with the same picture")
{
    Stage stage;
    stage.failing = 1;
    PresenterThread presenter(std::make_unique<FakeSource>(stage));
    CHECK(PresentOne(presenter, 5));
    CHECK(HoldsSoon([&] { return stage.last == 5; }));
    CHECK(HoldsSoon([&] { return presenter.Method() == std::string("second"); }));
    stage.failing = 2;
    CHECK(HoldsSoon([&] { return !PresentOne(presenter, 6); }));
    CHECK(stage.destroyed == 2);
    CHECK(presenter.Method() == std::string());
}

TEST_CASE("A window that is gone, and memory that is, end it without another try")
{
    for (const bool throwing : { false, true }) {
        Stage stage;
        stage.gone = true;
        stage.throwing = throwing;
        PresenterThread presenter(std::make_unique<FakeSource>(stage));
        CHECK(HoldsSoon([&] { return !PresentOne(presenter, 6); }));
        CHECK(stage.surfaces == 1);
        CHECK(stage.destroyed == 1);
        CHECK(presenter.End());
    }
}

TEST_CASE("It ends at any moment, also in a frame that lasts")
{
    for (int i = 0; i < 50; ++i) {
        Stage stage;
        PresenterThread presenter(std::make_unique<FakeSource>(stage));
        for (int frame = 0; frame < i % 4; ++frame)
            CHECK(PresentOne(presenter, 1));
        CHECK(presenter.End());
        CHECK_FALSE(stage.broken);
        CHECK(stage.surfaces == stage.destroyed);
    }
    Stage stage;
    stage.held = true;
    PresenterThread presenter(std::make_unique<FakeSource>(stage));
    CHECK(PresentOne(presenter, 1));
    REQUIRE(HoldsSoon([&] { return stage.frames == 1; }));
    const auto start = Clock::now();
    CHECK(presenter.End());
    CHECK(Clock::now() - start < milliseconds(1000));
    CHECK(stage.broken);
}
