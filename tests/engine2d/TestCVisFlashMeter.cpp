#include "engine2d/CVisFlashMeter.h"

#include "engine2d/FlashTesting.h"

#include <doctest/doctest.h>

#include <random>

namespace {

constexpr uint32_t black = 0xFF000000;
constexpr uint32_t white = 0xFFFFFFFF;

struct Transitions
{
    int32_t general;
    int32_t red;

    bool operator==(const Transitions& other) const
    {
        return general == other.general && red == other.red;
    }
};

Transitions Of(const CVisFlashMeter& meter)
{
    return { meter.Counter(CVisFlashKind::General).TransitionCount(),
        meter.Counter(CVisFlashKind::Red).TransitionCount() };
}

// Of pictures a tenth of a second from each other, shown in turn until there are six.
Transitions Of(const FlashPicture& one, const FlashPicture& other)
{
    CVisFlashMeter meter;
    for (int64_t k = 0; k < 6; ++k)
        meter.Add((k % 2 == 0 ? one : other).View(), FlashTime(k, 10));
    return Of(meter);
}

// Each cell has this many white pixels of 100, the others are black.
FlashPicture Share(int32_t count)
{
    FlashPicture picture(black, 10);
    for (int32_t y = 0; y < picture.height; ++y)
        for (int32_t x = 0; x < picture.width; ++x)
            if (y % 10 * 10 + x % 10 < count)
                picture.At(x, y) = white;
    return picture;
}

// The most transitions in a second that strobing at `flashes` a second for three seconds makes.
int32_t MostTransitions(double flashes, int64_t rate)
{
    CVisFlashMeter meter;
    int32_t most = 0;
    for (int64_t k = 0; k < 3 * rate; ++k) {
        const auto half = static_cast<int64_t>(
            static_cast<double>(k) * 2 * flashes / static_cast<double>(rate));
        meter.Add(FlashPicture(half % 2 == 0 ? black : white).View(), FlashTime(k, rate));
        most = std::max(most, Of(meter).general);
        CHECK(meter.IsExceeded() == (Of(meter).general > 6));
    }
    return most;
}

}

TEST_CASE("A tenth of the luminance is a transition if the darker picture is below 80 percent")
{
    CHECK(Of(Share(0), Share(10)) == Transitions { 5, 0 });
    CHECK(Of(Share(0), Share(9)) == Transitions { 0, 0 });
    CHECK(Of(Share(79), Share(89)) == Transitions { 5, 0 });
    CHECK(Of(Share(80), Share(90)) == Transitions { 0, 0 });
    CHECK(Of(Share(80), Share(100)) == Transitions { 0, 0 });
    CHECK(Of(Share(79), Share(88)) == Transitions { 0, 0 });
}

TEST_CASE("Red counts where a fifth at most is of other colours and more than 20 of 320 change")
{
    // Blue hardly adds luminance. Light of 10 % is byte 89, of 25 % byte 137.
    const auto red = [](int32_t share, uint32_t color, uint32_t rest) {
        FlashPicture picture(rest, 10);
        for (int32_t y = 0; y < picture.height; ++y)
            for (int32_t x = 0; x < picture.width; ++x)
                if (y % 10 * 10 + x % 10 < share)
                    picture.At(x, y) = color;
        return picture;
    };
    constexpr uint32_t fullRed = 0xFFFF0000;
    constexpr uint32_t fullBlue = 0xFF0000FF;
    const FlashPicture dark(black, 10);
    // 6 % of red is 19.2 of 320, 7 % is 22.4: too little luminance for a general flash.
    CHECK(Of(dark, red(6, fullRed, black)) == Transitions { 0, 0 });
    CHECK(Of(dark, red(7, fullRed, black)) == Transitions { 0, 5 });
    // From 40 % on that is still a change by 7 %, and both are saturated.
    CHECK(Of(red(40, fullRed, black), red(47, fullRed, black)) == Transitions { 0, 5 });
    // 80 parts of red and 20 of blue are just saturated, of 79 and 21 no more.
    CHECK(Of(dark, red(80, fullRed, fullBlue)).red == 5);
    CHECK(Of(dark, red(79, fullRed, fullBlue)).red == 0);
    CHECK(Of(red(100, fullRed, black), FlashPicture(fullBlue, 10)) == Transitions { 5, 5 });
    CHECK(Of(dark, FlashPicture(white, 10)).red == 0);
}

TEST_CASE("A quarter of the picture is not yet too much, and a pixel more is, wherever it lies")
{
    const FlashPicture dark(black);
    constexpr int32_t quarter = FlashPicture::columns * FlashPicture::rows / 4;
    CHECK(Of(dark, FlashPicture(black).Fill(quarter, white)).general == 0);
    CHECK(Of(dark, FlashPicture(black).Fill(quarter + 1, white)).general == 5);
    FlashPicture scattered(black);
    for (int32_t i = 0; i < 4 * quarter; i += 4)
        scattered.pixels[static_cast<size_t>(i)] = white;
    CHECK(Of(dark, scattered).general == 0);
    scattered.pixels[1] = white;
    CHECK(Of(dark, scattered).general == 5);
    // Up and down add up.
    FlashPicture one(black);
    FlashPicture other(black);
    one.Fill(quarter, white);
    other.Fill(2 * quarter, white).Fill(quarter, black);
    CHECK(Of(one, other).general == 5);
}

TEST_CASE("Three flashes a second are within the limit and more are not, at every rate")
{
    for (const int64_t rate : { 24, 30, 60 }) {
        CHECK(MostTransitions(1, rate) == 2);
        CHECK(MostTransitions(3, rate) == 6);
        CHECK(MostTransitions(4, rate) == 8);
        CHECK(MostTransitions(static_cast<double>(rate) / 2, rate) == rate);
    }
}

TEST_CASE("A ramp is one transition each way, a scene cut one, and noise below the limit none")
{
    CVisFlashMeter meter;
    std::mt19937 random(1);
    int64_t k = 0;
    for (const int32_t direction : { 1, -1, 1, -1 })
        for (int32_t i = 0; i <= 14; ++i) {
            const int32_t share = direction > 0 ? 7 * i : 98 - 7 * i;
            // Less than a tenth up and down on the way.
            meter.Add(Share(share + static_cast<int32_t>(random() % 2)).View(), FlashTime(k++, 60));
        }
    CHECK(Of(meter) == Transitions { 4, 0 });

    CVisFlashMeter noise;
    for (k = 0; k < 120; ++k) {
        FlashPicture picture(black, 10);
        for (uint32_t& pixel : picture.pixels)
            pixel = black | (96 + random() % 64) * 0x10101;
        noise.Add(picture.View(), FlashTime(k, 60));
        CHECK(Of(noise) == Transitions { 0, 0 });
    }
    noise.Add(FlashPicture(white, 10).View(), FlashTime(k, 60));
    CHECK(Of(noise) == Transitions { 1, 0 });
}

TEST_CASE("A checkerboard that moves does not flash as long as its squares are smaller than cells")
{
    const auto board = [](int32_t square, int32_t offset) {
        FlashPicture picture(black, 10);
        for (int32_t y = 0; y < picture.height; ++y)
            for (int32_t x = 0; x < picture.width; ++x)
                if (((x + offset) / square + y / square) % 2 == 0)
                    picture.At(x, y) = white;
        return picture;
    };
    CHECK(Of(board(5, 0), board(5, 5)).general == 0);
    CHECK(Of(board(20, 0), board(20, 20)).general == 5);
    // Neither do fine ones look as if they did where not all pixels are measured.
    CVisFlashMeter meter;
    for (int64_t k = 0; k < 30; ++k) {
        std::vector<uint32_t> pixels(size_t { 1280 } * 720);
        for (size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = (i % 1280 + i / 1280 + static_cast<size_t>(k)) % 2 == 0 ? black : white;
        meter.Add({ pixels.data(), 1280, 1280, 720 }, FlashTime(k, 60));
        CHECK(Of(meter).general == 0);
    }
}

TEST_CASE("What flashes in turns counts together if it is concurrent")
{
    // Four quarters, each by itself, a picture after the other.
    const auto most = [](int64_t rate) {
        CVisFlashMeter meter;
        FlashPicture picture(black);
        int32_t count = 0;
        for (int64_t k = 0; k < rate; ++k) {
            const size_t quarter = picture.pixels.size() / 4;
            const size_t first = static_cast<size_t>(k % 4) * quarter;
            for (size_t i = first; i < first + quarter; ++i)
                picture.pixels[i] ^= white & 0xFFFFFF;
            meter.Add(picture.View(), FlashTime(k, rate));
            count = std::max(count, Of(meter).general);
        }
        return count;
    };
    CHECK(most(10) == 0);
    // The second quarter makes a transition, the next two join it.
    CHECK(most(60) == 15);
}

TEST_CASE("Sizes and row orders make no difference, and none is too small")
{
    for (const auto& [width, height] : { std::pair { 1, 1 }, { 7, 3 }, { 3, 200 }, { 1280, 720 },
             { 719, 1281 }, { 1920, 1080 }, { 8, 16384 } }) {
        CAPTURE(width);
        CVisFlashMeter meter;
        std::vector<uint32_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
        for (int64_t k = 0; k < 30; ++k) {
            std::fill(pixels.begin(), pixels.end(), k % 2 == 0 ? black : white);
            meter.Add({ pixels.data() + (height - 1) * int64_t { width }, -width, width, height },
                FlashTime(k, 30));
        }
        CHECK(Of(meter) == Transitions { 29, 0 });
        CHECK(meter.Counter(CVisFlashKind::General).LargestArea() == 100);
        CHECK(meter.Counter(CVisFlashKind::General).FirstTime() == FlashTime(1, 30));
        CHECK(meter.Counter(CVisFlashKind::General).LastTime() == FlashTime(29, 30));
        // Another size keeps the count but is no transition, and time does not go back.
        meter.Add(FlashPicture(black).View(), 0);
        CHECK(Of(meter).general == 29);
        meter.Add(FlashPicture(black).View(), FlashTime(31, 30));
        CHECK(Of(meter).general == 28);
    }
    CVisFlashMeter().Add({}, 0);
}
