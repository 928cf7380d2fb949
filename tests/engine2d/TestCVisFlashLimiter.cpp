#include "engine2d/CVisFlashLimiter.h"

#include "engine2d/FlashTesting.h"

#include <doctest/doctest.h>

#include <array>
#include <random>

namespace {

constexpr uint32_t black = 0xFF000000;
constexpr uint32_t white = 0xFFFFFFFF;
constexpr uint32_t red = 0xFFFF0000;
constexpr uint32_t blue = 0xFF0000FF;

// A limiter with a meter behind it that holds it to its word.
class Watched
{
public:
    explicit Watched(int64_t rate)
        : m_rate(rate)
    {
    }

    // Gives what is shown.
    FlashPicture Show(FlashPicture picture)
    {
        const FlashPicture before = picture;
        const int64_t time = FlashTime(m_count++, m_rate);
        const bool isDamped = m_limiter.IsDamped(picture.View(), time);
        CHECK(picture.pixels == before.pixels);
        if (isDamped)
            m_limiter.CopyDamped(picture.pixels.data(), picture.width);
        damped += isDamped ? 1 : 0;
        m_meter.Add(picture.View(), time);
        REQUIRE(!m_meter.IsExceeded());
        return picture;
    }

    int32_t damped = 0;

private:
    int64_t m_rate;
    int64_t m_count = 0;
    CVisFlashLimiter m_limiter;
    CVisFlashMeter m_meter;
};

// The picture's first `area` pixels change between the colours.
FlashPicture Strobe(
    int64_t k, double flashes, int64_t rate, uint32_t on, uint32_t off, int32_t area)
{
    const auto half
        = static_cast<int64_t>(static_cast<double>(k) * 2 * flashes / static_cast<double>(rate));
    FlashPicture picture(black);
    return picture.Fill(area, half % 2 == 0 ? off : on);
}

constexpr int32_t whole = FlashPicture::columns * FlashPicture::rows;

}

TEST_CASE("No strobe gets past the limit, and those that keep it pass untouched")
{
    struct Kind
    {
        uint32_t on;
        uint32_t off;
        int32_t area;
    };

    constexpr Kind kinds[]
        = { { white, black, whole }, { white, black, whole / 2 }, { white, black, whole / 4 },
              { red, black, whole }, { red, blue, whole / 2 }, { 0xFF909090, 0xFF303030, whole } };

    struct Pace
    {
        int64_t rate; // pictures a second
        double flashes;
    };

    constexpr Pace paces[] = { { 24, 3 }, { 24, 4 }, { 24, 12 }, { 30, 3.5 }, { 30, 7 }, { 30, 15 },
        { 60, 2 }, { 60, 3 }, { 60, 4 }, { 60, 10 }, { 60, 30 } };
    for (const Pace& pace : paces)
        for (const Kind& kind : kinds) {
            CAPTURE(pace.rate);
            CAPTURE(pace.flashes);
            Watched watched(pace.rate);
            for (int64_t k = 0; k < 3 * pace.rate; ++k)
                watched.Show(Strobe(k, pace.flashes, pace.rate, kind.on, kind.off, kind.area));
            CHECK((watched.damped == 0) == (pace.flashes <= 3 || kind.area == whole / 4));
        }
}

TEST_CASE("Areas that move, random pictures and changes of size and rate do not get past it either")
{
    std::mt19937 random(7);
    const auto upTo = [&](int32_t most) {
        return static_cast<int32_t>(random() % static_cast<uint32_t>(most + 1));
    };
    for (int run = 0; run < 24; ++run) {
        const int64_t rate = std::array { 24, 30, 60, 144 }[static_cast<size_t>(run % 4)];
        Watched watched(rate);
        FlashPicture picture(black, run % 3 == 0 ? 2 : 1);
        for (int64_t k = 0; k < 3 * rate; ++k) {
            const int32_t x = upTo(picture.width - 1);
            const int32_t y = upTo(picture.height - 1);
            const uint32_t color = random() | black;
            switch (run % 6) {
            case 0: // whole pictures
                picture.Fill(static_cast<int32_t>(picture.pixels.size()), color);
                break;
            case 1: // every pixel by itself
                for (uint32_t& pixel : picture.pixels)
                    pixel = random();
                break;
            case 2: // a block that jumps
                picture = FlashPicture(black);
                for (int32_t row = y / 2; row < y / 2 + 18; ++row)
                    std::fill_n(&picture.At(x / 2, row), 32, white);
                break;
            case 3: // now and then a part
                if (upTo(3) == 0)
                    picture.Fill(y * picture.width + x, color);
                break;
            case 4: // bars that move by leaps
                for (int32_t row = 0; row < picture.height; ++row)
                    for (int32_t column = 0; column < picture.width; ++column)
                        picture.At(column, row)
                            = (column + 5 * static_cast<int32_t>(k)) / 16 % 2 == 0 ? red : black;
                break;
            default: // half of it and sizes that change
                picture = FlashPicture(black, upTo(40) == 0 ? 2 : 1);
                picture.Fill(upTo(1) * static_cast<int32_t>(picture.pixels.size()) / 2, white);
            }
            watched.Show(picture);
        }
    }
}

TEST_CASE(
    "After a strobe a steady picture is reached, bit for bit, and further ones pass untouched")
{
    for (const int64_t rate : { 24, 60 })
        for (const uint32_t last : { black, white }) {
            Watched watched(rate);
            int64_t k = 0;
            for (; k < 3 * rate; ++k)
                watched.Show(Strobe(k, 8, rate, white, black, whole));
            CHECK(watched.damped > 0);
            uint32_t shown = 0;
            for (int64_t i = 0; i < 2 * rate + 2; ++i)
                shown = watched.Show(FlashPicture(last)).At(0, 0);
            CHECK(shown == last);
            watched.damped = 0;
            for (int64_t i = 0; i < 2 * rate; ++i)
                watched.Show(Strobe(k++, 2, rate, white, black, whole));
            CHECK(watched.damped == 0);
        }
}

TEST_CASE("A strobe becomes a calm mean of its light")
{
    Watched watched(60);
    int64_t light = 0;
    for (int64_t k = 0; k < 600; ++k) {
        const FlashPicture shown = watched.Show(Strobe(k, 10, 60, white, black, whole));
        light += k < 60 ? 0 : pxvis::kernels::LinearLight()[shown.pixels[0] & 0xFF];
    }
    const int64_t mean = light / 540 * 100 / pxvis::kernels::linearLightFull;
    CAPTURE(mean);
    CHECK(mean > 25); // 50 without a limit
    CHECK(mean < 65);
}
