#include "kernels/TransformRow.h"

#include "kernels/KernelTesting.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <random>
#include <vector>

using namespace pxvis::kernels;

namespace {

constexpr uint32_t untouched = 0xDEADBEEF;

// A picture whose map is the identity, under the multipliers of a factor of 1.
struct Picture
{
    Picture(int32_t width, int32_t height)
        : source(static_cast<size_t>(width * height))
        , target(source.size(), untouched)
        , map(source.size() * 2)
    {
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) {
                map[static_cast<size_t>(y * width + x) * 2] = static_cast<uint16_t>(x * 32);
                map[static_cast<size_t>(y * width + x) * 2 + 1] = static_cast<uint16_t>(y * 32);
            }
        }
        pass.source = source.data();
        pass.target = target.data();
        pass.map16 = map.data();
        pass.width = width;
        pass.height = height;
        pass.left = 1;
        pass.right = width - 1;
        for (uint16_t& multiplier : pass.multiplier)
            multiplier = 204;
        pass.multiplier[3] = 127;
    }

    size_t At(int32_t x, int32_t y) const
    {
        return static_cast<size_t>((pass.height - 1 - y) * pass.width + x);
    }

    std::vector<uint32_t> source;
    std::vector<uint32_t> target;
    std::vector<uint16_t> map;
    TransformPass pass;
};

}

TEST_CASE("A flat picture keeps 255/256 of its colours and the edges stay")
{
    Picture picture(6, 5);
    picture.source.assign(picture.source.size(), 0xFF6496C8);
    for (int32_t y = 1; y < 4; ++y)
        TransformRow(picture.pass, y, {});
    // 20 * byte >> 4, times the multiplier, >> 8
    const uint32_t expected = (318u * 127 >> 8) << 24 | (125u * 204 >> 8) << 16
        | (187u * 204 >> 8) << 8 | (250u * 204 >> 8);
    for (int32_t y = 0; y < 5; ++y) {
        for (int32_t x = 0; x < 6; ++x) {
            const bool inside = x > 0 && x < 5 && y > 0 && y < 4;
            CHECK(picture.target[picture.At(x, y)] == (inside ? expected : untouched));
        }
    }
}

TEST_CASE("The four neighbours are those of the written pixel, not of the sample")
{
    Picture picture(8, 8);
    picture.source[picture.At(2, 3)] = 0x000000FF;
    picture.pass.scrollX = -3; // (x, y) samples (x + 3, y)
    for (int32_t y = 1; y < 7; ++y)
        TransformRow(picture.pass, y, {});
    const uint32_t glow = 255u / 16 * 204 >> 8;
    CHECK(picture.target[picture.At(3, 3)] == glow);
    CHECK(picture.target[picture.At(1, 3)] == glow);
    CHECK(picture.target[picture.At(2, 2)] == glow);
    CHECK(picture.target[picture.At(2, 4)] == glow);
    CHECK(picture.target[picture.At(2, 3)] == 0); // a pixel is no neighbour of its own
    CHECK(picture.target[picture.At(6, 3)] == 0); // samples column 9: outside
}

TEST_CASE("A fraction above the dither threshold rounds up, and 65535 does not round up to 0")
{
    Picture picture(8, 8);
    picture.source[picture.At(4, 4)] = 0x000000F0;
    const size_t entry = static_cast<size_t>(4 * 8 + 2) * 2;
    picture.map[entry] = 3 * 32 + 31; // column 3.97
    picture.pass.ditherThreshold = 30;
    TransformRow(picture.pass, 4, {});
    CHECK(picture.target[picture.At(2, 4)] == (0xF0u * 204 >> 8));
    picture.pass.ditherThreshold = 31;
    TransformRow(picture.pass, 4, {});
    CHECK(picture.target[picture.At(2, 4)] == 0);

    picture.map[entry] = 65535; // a hair below column 0 wraps, and stays outside
    picture.source.assign(picture.source.size(), 0);
    picture.source[picture.At(0, 4)] = 0xFF;
    picture.pass.ditherThreshold = 0;
    TransformRow(picture.pass, 4, {});
    CHECK(picture.target[picture.At(2, 4)] == 0);
}

TEST_CASE("The product wraps in 16 bits: a bright pixel under a large multiplier comes out dark")
{
    Picture picture(5, 5);
    picture.source.assign(picture.source.size(), 0x00FFFFFF);
    picture.pass.multiplier[0] = 206;
    picture.pass.multiplier[1] = 207;
    picture.pass.multiplier[2] = 0xFFC3; // of a factor of -0.3
    TransformRow(picture.pass, 2, {});
    const uint32_t pixel = picture.target[picture.At(2, 2)];
    CHECK((pixel & 0xFF) == 255); // 318 * 206 = 65508
    CHECK((pixel >> 8 & 0xFF) == 1); // 318 * 207 = 65826
    CHECK((pixel >> 16 & 0xFF) == ((318u * 0xFFC3 & 0xFFFF) >> 8));
}

TEST_CASE("The zoom steps back one column each time the phase passes 1024, after the pixel is read")
{
    Picture picture(40, 5);
    for (int32_t x = 0; x < 40; ++x)
        picture.source[picture.At(x, 2)] = static_cast<uint32_t>(x * 4);
    picture.pass.zoomX = 2;
    picture.pass.zoomStepX = 512;
    TransformRow(picture.pass, 2, { 0, 1 });
    // phases 1, 513, then 1025 becomes 1: the offset falls after every second pixel
    int32_t offset = 2;
    for (int32_t x = 1; x < 39; ++x) {
        const int32_t sampled = x + offset >= 0 && x + offset < 40 ? 16 * (x + offset) * 4 : 0;
        const uint32_t sum = static_cast<uint32_t>((x - 1) * 4 + (x + 1) * 4 + sampled);
        CHECK(picture.target[picture.At(x, 2)] == ((sum >> 4) * 204 & 0xFFFF) >> 8);
        if (x % 2 == 0)
            --offset;
    }
    // At exactly 1024 nothing moves yet, and a negative step never gets there.
    picture.pass.zoomX = -1;
    for (const auto& [step, phase] :
        { std::pair(-512, 1023), std::pair(0, 1023), std::pair(1, 985) }) {
        picture.pass.zoomStepX = step;
        TransformRow(picture.pass, 2, { 0, phase });
        CHECK(picture.target[picture.At(30, 2)] == (((29u + 31 + 16 * 29) * 4 >> 4) * 204 >> 8));
    }
}

TEST_CASE("32-bit entries read as 16-bit ones do, and any scroll stays in bounds")
{
    Picture picture(9, 7);
    for (size_t i = 0; i < picture.source.size(); ++i)
        picture.source[i] = static_cast<uint32_t>(i) * 0x01030507;
    std::vector<uint32_t> wide(picture.map.begin(), picture.map.end());
    picture.map[(3 * 9 + 4) * 2] = 32767;
    wide[(3 * 9 + 4) * 2] = 0x7FFFFFFF;
    const auto draw = [&](bool use32) {
        picture.target.assign(picture.target.size(), untouched);
        picture.pass.map16 = use32 ? nullptr : picture.map.data();
        picture.pass.map32 = use32 ? wide.data() : nullptr;
        for (int32_t y = 1; y < 6; ++y)
            TransformRow(picture.pass, y, { INT32_MIN, 77 });
        return picture.target;
    };
    for (const int32_t scroll : { 0, 3, -3, INT32_MAX, INT32_MIN }) {
        picture.pass.scrollX = scroll;
        picture.pass.scrollY = INT32_MIN; // undoes the row offset
        CHECK(draw(false) == draw(true));
    }
}

namespace {

int32_t OneOf(std::initializer_list<int32_t> numbers, std::mt19937& random)
{
    return numbers.begin()[random() % numbers.size()];
}

// A picture of noise under a map that leads near each pixel, anywhere, or to the ends of what an
// entry holds; everything at any offset from an aligned address.
template <typename Entry>
struct RandomPicture
{
    RandomPicture(int32_t width, int32_t height, std::mt19937& random)
        : source(Count(width, height), random() % 17, random)
        , target(Count(width, height), random() % 17, random)
        , map(Count(width, height) * 2, random() % 17, random)
    {
        Entry* entry = map.Data();
        for (int32_t i = 0; i < width * height; ++i, entry += 2) {
            const auto near = [&random](int32_t position) {
                const int32_t end = OneOf({ 65535, 32767, 65520, -1, INT32_MAX, 0 }, random);
                return static_cast<Entry>(random() % 8
                        ? position * 32 + static_cast<int32_t>(random() % 600) - 300
                        : end);
            };
            if (random() % 16 == 0)
                continue;
            entry[0] = near(i % width);
            entry[1] = near(i / width);
        }
        pass.source = source.Data();
        pass.width = width;
        pass.height = height;
        if constexpr (sizeof(Entry) == 2)
            pass.map16 = map.Data();
        else
            pass.map32 = map.Data();
        pass.ditherThreshold = static_cast<int32_t>(random() % 32);
        for (uint16_t& multiplier : pass.multiplier)
            multiplier = static_cast<uint16_t>(random() % 2 ? random() : 204);
        pass.left = 1 + (random() % 2 ? static_cast<int32_t>(random() % 5) : 0);
        pass.right = width - 1 - (random() % 2 ? static_cast<int32_t>(random() % 5) : 0);
        const std::initializer_list<int32_t> moves
            = { 0, 0, 3, -5, 17, -2000, 2040, -9000, 40000, INT32_MAX, INT32_MIN };
        pass.scrollX = OneOf(moves, random);
        pass.scrollY = OneOf(moves, random);
        pass.zoomX = random() % 4 ? OneOf(moves, random) : pass.scrollX;
        pass.zoomStepX = OneOf({ 0, 1, -1, 100, -77, 1023, 1024, 1025, 1500, -5000, 1 << 20,
                                   1 << 27, -2'000'000'000, INT32_MAX, INT32_MIN },
            random);
        start.offsetY = random() % 4 ? OneOf(moves, random) : pass.scrollY;
        start.phaseX
            = static_cast<int32_t>(random() % 4 ? random() % 1024 : OneOf({ 0, 1, 1023 }, random));
    }

    static size_t Count(int32_t width, int32_t height)
    {
        return static_cast<size_t>(width * height);
    }

    // The vectors' picture, guards included, is the scalar one.
    bool Agrees()
    {
        GuardedRow<uint32_t> expected = target;
        for (int32_t y = 1; y < pass.height - 1; ++y) {
            pass.target = target.Data();
            TransformRow(pass, y, start);
            pass.target = expected.Data();
            scalar::TransformRow(pass, y, start);
        }
        return target == expected;
    }

    GuardedRow<uint32_t> source;
    GuardedRow<uint32_t> target;
    GuardedRow<Entry> map;
    TransformPass pass;
    TransformRowStart start;
};

template <typename Entry>
void CompareForms(int32_t width, int32_t height, int passes)
{
    std::mt19937 random(static_cast<uint32_t>(width));
    for (int i = 0; i < passes; ++i) {
        RandomPicture<Entry> picture(width, height, random);
        const TransformPass& pass = picture.pass;
        CAPTURE(width);
        CAPTURE(pass.left);
        CAPTURE(pass.right);
        CAPTURE(pass.ditherThreshold);
        CAPTURE(pass.scrollX);
        CAPTURE(pass.scrollY);
        CAPTURE(pass.zoomX);
        CAPTURE(pass.zoomStepX);
        CAPTURE(picture.start.offsetY);
        CAPTURE(picture.start.phaseX);
        CHECK(picture.Agrees());
    }
}

}

TEST_CASE("The pass is the same at every instruction set, and touches nothing outside its columns")
{
    ForEachInstructionSet([] {
        for (int32_t width = 3; width <= 67; ++width) {
            CompareForms<uint16_t>(width, 3 + width % 4, 12);
            CompareForms<uint32_t>(width, 3 + width % 4, 12);
        }
        for (const int32_t width : { 129, 143, 145, 300, 2047, 8192, 8193 }) {
            CompareForms<uint16_t>(width, 5, 8);
            CompareForms<uint32_t>(width, 5, 8);
        }
        CompareForms<uint32_t>(20, 8193, 1);
    });
}

TEST_CASE("Every threshold rounds 16-bit positions from both ends as the definition does")
{
    constexpr int32_t width = 258;
    constexpr int32_t height = 10;
    std::vector<uint32_t> source(width * height);
    std::vector<uint16_t> map(source.size() * 2);
    for (size_t i = 0; i < source.size(); ++i) {
        source[i] = static_cast<uint32_t>(i) * 0x9E3779B1u; // tells where it was read
        map[2 * i] = static_cast<uint16_t>(i - source.size() / 2);
        map[2 * i + 1] = 32 * 5;
    }
    std::vector<uint32_t> target(source.size());
    std::vector<uint32_t> expected(source.size());
    TransformPass pass;
    pass.source = source.data();
    pass.map16 = map.data();
    pass.width = width;
    pass.height = height;
    pass.right = width - 1;
    std::fill(std::begin(pass.multiplier), std::end(pass.multiplier), uint16_t { 201 });
    ForEachInstructionSet([&] {
        for (pass.ditherThreshold = 0; pass.ditherThreshold < 32; ++pass.ditherThreshold) {
            for (const int32_t scroll : { -100, 0, 1900 }) {
                pass.scrollX = scroll;
                for (int32_t y = 1; y < height - 1; ++y) {
                    pass.target = target.data();
                    TransformRow(pass, y, {});
                    pass.target = expected.data();
                    scalar::TransformRow(pass, y, {});
                }
                CHECK(target == expected);
            }
        }
    });
}
