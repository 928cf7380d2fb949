#include "kernels/DynamicTransformRow.h"
#include "kernels/SuperTransformRow.h"

#include "kernels/KernelTesting.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <initializer_list>
#include <random>
#include <utility>
#include <vector>

using namespace pxvis::kernels;

namespace {

constexpr uint32_t untouched = 0xDEADBEEF;

// A picture whose blue counts the columns and whose green counts the rows, under multipliers that
// keep that: the neighbours add a quarter of the pixel's own place to its source's.
template <typename Pass>
struct Picture
{
    Picture(int32_t width, int32_t height)
        : source(static_cast<size_t>(width * height))
        , target(source.size(), untouched)
    {
        pass.source = source.data();
        pass.target = target.data();
        pass.width = width;
        pass.height = height;
        for (uint16_t& multiplier : pass.multiplier)
            multiplier = 256;
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x)
                source[At(x, y)] = 0xFF000000u | static_cast<uint32_t>(y << 8 | x);
        }
    }

    size_t At(int32_t x, int32_t y) const
    {
        return static_cast<size_t>((pass.height - 1 - y) * pass.width + x);
    }

    // Where the pixel was taken from.
    std::pair<int32_t, int32_t> SourceOf(int32_t x, int32_t y) const
    {
        const uint32_t pixel = target[At(x, y)];
        return { static_cast<int32_t>(pixel & 0xFF) - x / 4,
            static_cast<int32_t>(pixel >> 8 & 0xFF) - y / 4 };
    }

    std::vector<uint32_t> source;
    std::vector<uint32_t> target;
    Pass pass;
};

// Around the centre ((width + 1) / 2, (height + 1) / 2).
struct SuperPicture : Picture<SuperTransformPass>
{
    SuperPicture(int32_t width, int32_t height)
        : Picture(width, height)
    {
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) {
                map.push_back(static_cast<int16_t>((x - (width + 1) / 2) * 32));
                map.push_back(static_cast<int16_t>((y - (height + 1) / 2) * 32));
            }
        }
        pass.map16 = map.data();
    }

    void Draw()
    {
        for (int32_t y = 1; y < pass.height - 1; ++y)
            SuperTransformRow(pass, y);
    }

    std::vector<int16_t> map;
};

struct DynamicPicture : Picture<DynamicTransformPass>
{
    DynamicPicture(int32_t width, int32_t height)
        : Picture(width, height)
    {
        pass.gridWidth = width / 8 + 1;
        pass.gridHeight = height / 8 + 1;
        points.resize(static_cast<size_t>(pass.gridWidth * pass.gridHeight) * 2);
        pass.points = points.data();
    }

    int32_t& Point(int32_t column, int32_t row)
    {
        return points[static_cast<size_t>(row * pass.gridWidth + column) * 2];
    }

    std::vector<int32_t> points;
};

}

TEST_CASE("A map of its own place keeps 255/256 of a flat colour, drops alpha and leaves the frame")
{
    SuperPicture picture(7, 6);
    picture.source.assign(picture.source.size(), 0xFF6496C8);
    for (uint16_t& multiplier : picture.pass.multiplier)
        multiplier = 204;
    picture.Draw();
    const uint32_t expected = (125u * 204 >> 8) << 16 | (187u * 204 >> 8) << 8 | (250u * 204 >> 8);
    for (int32_t y = 0; y < 6; ++y) {
        for (int32_t x = 0; x < 7; ++x) {
            const bool inside = x > 0 && x < 6 && y > 0 && y < 5;
            CHECK(picture.target[picture.At(x, y)] == (inside ? expected : untouched));
        }
    }
}

TEST_CASE("The neighbours are the diagonal ones of the written pixel")
{
    SuperPicture picture(9, 9);
    picture.source.assign(picture.source.size(), 0);
    picture.source[picture.At(4, 4)] = 0xFF;
    picture.pass.scrollX = -3 * 32; // (x, y) samples (x + 3, y)
    picture.Draw();
    for (int32_t y = 1; y < 8; ++y) {
        for (int32_t x = 1; x < 8; ++x) {
            const bool diagonal = (x == 3 || x == 5) && (y == 3 || y == 5);
            const uint32_t expected = x == 1 && y == 4 ? 0xFF : diagonal ? 0xF : 0;
            CHECK(picture.target[picture.At(x, y)] == expected);
        }
    }
}

TEST_CASE("Rotation, then stretch, then scroll move the source, in 1/32 pixel")
{
    SuperPicture picture(41, 31); // centre (21, 16)
    auto& pass = picture.pass;
    pass.sine = 1024; // a quarter turn: what lies right comes from below
    pass.cosine = 0;
    picture.Draw();
    CHECK(picture.SourceOf(25, 16) == std::pair(21, 20));
    CHECK(picture.SourceOf(21, 20) == std::pair(17, 16));

    pass.factorX = 512; // of the turned x
    picture.Draw();
    CHECK(picture.SourceOf(21, 20) == std::pair(19, 16));
    CHECK(picture.SourceOf(25, 16) == std::pair(21, 20));

    pass.scrollX = 3 * 32; // not turned, not stretched
    pass.scrollY = 5 * 32;
    picture.Draw();
    CHECK(picture.SourceOf(21, 20) == std::pair(16, 21));

    pass.sine = 0;
    pass.cosine = 1024;
    pass.factorX = 0; // all from the centre's column
    pass.factorY = -1024; // upside down
    pass.scrollX = pass.scrollY = 0;
    picture.Draw();
    CHECK(picture.SourceOf(5, 10) == std::pair(21, 22));
}

TEST_CASE("A fraction above the dither threshold goes on to the next pixel, left of the centre too")
{
    SuperPicture picture(41, 31);
    picture.pass.scrollX = 32 - 7; // fraction 7, one pixel to the left
    for (const auto& [threshold, column] : { std::pair(6, 10), std::pair(7, 9) }) {
        picture.pass.ditherThreshold = threshold;
        picture.Draw();
        CHECK(picture.SourceOf(10, 10).first == column);
        CHECK(picture.SourceOf(30, 10).first == column + 20);
    }
}

TEST_CASE("Outside the picture it goes on with the next row in memory, or is black when clipped")
{
    SuperPicture picture(41, 31);
    picture.pass.scrollX = 30 * 32;
    picture.Draw();
    CHECK(picture.SourceOf(35, 10) == std::pair(5, 10));
    CHECK(picture.SourceOf(12, 10) == std::pair(23, 11)); // column -18 is 23 of the row below
    picture.pass.clips = true;
    picture.Draw();
    CHECK(picture.SourceOf(35, 10) == std::pair(5, 10));
    CHECK(picture.target[picture.At(12, 8)] == (2u << 8 | 3u)); // the neighbours only

    // Below the last row the byte offset is negative and wraps in 32 bits: 2^30 pixels leave 4
    // over when 30 of them make a picture.
    SuperPicture small(6, 5);
    small.pass.scrollX = 2 * 32;
    small.pass.scrollY = 1 * 32;
    small.Draw(); // (1, 3) samples (-1, 4)
    CHECK(small.target[small.At(1, 3)] % 256 == (small.source[3] % 256 * 16 + 4) / 16);
}

TEST_CASE("Summands saturate, and the product before them wraps in 16 bits")
{
    SuperPicture picture(5, 5);
    const auto pixelOf = [&](uint32_t source, uint16_t multiplier, int16_t summand) {
        picture.source.assign(picture.source.size(), source);
        picture.pass.multiplier[1] = multiplier;
        picture.pass.summand[1] = summand;
        picture.Draw();
        return picture.target[picture.At(2, 2)] >> 8 & 0xFF;
    };
    CHECK(pixelOf(0x00FFFFFF, 204, -256) == 0);
    CHECK(pixelOf(0x00000000, 204, 256) == 255);
    CHECK(pixelOf(0x00002000, 204, 5) == (40u * 204 >> 8) + 5);
    CHECK(pixelOf(0x00FFFFFF, 207, 0) == 1); // 318 * 207 = 65826
    CHECK(pixelOf(0x00FFFFFF, 207, 32767) == 255);
    CHECK(pixelOf(0x00FFFFFF, 207, -32768) == 0);
}

TEST_CASE("32-bit entries read as 16-bit ones do, and any number in a pass stays in bounds")
{
    SuperPicture picture(19, 7);
    const std::vector<int32_t> wide(picture.map.begin(), picture.map.end());
    for (const int32_t any : { 0, 700, -3, 1 << 20, INT32_MAX, INT32_MIN }) {
        picture.pass.sine = any;
        picture.pass.factorX = picture.pass.factorY = any;
        picture.pass.scrollX = picture.pass.scrollY = any;
        picture.pass.map32 = wide.data();
        picture.pass.map16 = nullptr;
        picture.Draw();
        const std::vector<uint32_t> drawn = picture.target;
        picture.pass.map16 = picture.map.data();
        picture.Draw();
        CHECK(drawn == picture.target);
    }
    for (const int32_t any : { INT32_MAX, INT32_MIN }) {
        const std::vector<int32_t> far(wide.size(), any);
        picture.pass.map16 = nullptr;
        picture.pass.map32 = far.data();
        picture.Draw();
        DynamicPicture dynamic(19, 11);
        for (size_t i = 0; i < dynamic.points.size(); i += 3)
            dynamic.points[i] = any;
        for (int32_t y = 1; y < 10; ++y)
            DynamicTransformRow(dynamic.pass, y);
    }
}

TEST_CASE("Between grid points the displacement is linear, one pixel ahead across, not downward")
{
    DynamicPicture picture(33, 32);
    picture.pass.ditherThreshold = 31; // never up
    for (int32_t row = 0; row < picture.pass.gridHeight; ++row) {
        picture.Point(1, row) = 8 * 32; // 0, 8, 0, ... pixels to the right
        (&picture.Point(2, row))[1] = 4 * 32; // 4 pixels downward
    }
    picture.Point(1, 2) = 0; // not in the third row
    for (int32_t y = 1; y < 31; ++y)
        DynamicTransformRow(picture.pass, y);
    for (int32_t x = 1; x <= 7; ++x)
        CHECK(picture.SourceOf(x, 4) == std::pair(x + x + 1, 4));
    CHECK(picture.SourceOf(8, 4) == std::pair(8 + 7, 4)); // 4/8 pixel down
    CHECK(picture.SourceOf(15, 4) == std::pair(15, 8));
    CHECK(picture.SourceOf(23, 4) == std::pair(23, 4));
    CHECK(picture.SourceOf(7, 12) == std::pair(7 + 4, 12)); // halfway to the row without
}

TEST_CASE("Behind the last grid point that one goes on")
{
    DynamicPicture picture(22, 15); // points at columns 0, 8, 16 and rows 0, 8
    for (int32_t column = 0; column < 3; ++column)
        picture.Point(column, 1) = -64; // in pixels: 2 to the left
    for (int32_t y = 1; y < 14; ++y)
        DynamicTransformRow(picture.pass, y);
    CHECK(picture.SourceOf(20, 13) == std::pair(18, 13));
    CHECK(picture.SourceOf(20, 4) == std::pair(19, 4)); // halfway
}

TEST_CASE("The frame becomes a copy of what lies inside it, unless a side has 3 pixels or fewer")
{
    for (const auto& [width, height] : { std::pair(4, 4), std::pair(9, 5) }) {
        std::vector<uint32_t> bits(static_cast<size_t>(width * height), untouched);
        const auto at = [&bits, w = width](int32_t x, int32_t y) -> uint32_t& {
            return bits[static_cast<size_t>(y * w + x)];
        };
        for (int32_t y = 1; y < height - 1; ++y) {
            for (int32_t x = 1; x < width - 1; ++x)
                at(x, y) = static_cast<uint32_t>(y * 100 + x);
        }
        RepairFrame(bits.data(), width, height);
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) {
                const int32_t insideX = std::min(std::max(x, 1), width - 2);
                const int32_t insideY = std::min(std::max(y, 1), height - 2);
                CHECK(at(x, y) == static_cast<uint32_t>(insideY * 100 + insideX));
            }
        }
    }
    std::vector<uint32_t> narrow(3 * 9, untouched);
    narrow[4] = 7;
    const std::vector<uint32_t> before = narrow;
    RepairFrame(narrow.data(), 3, 9);
    RepairFrame(narrow.data(), 9, 3);
    CHECK(narrow == before);
}

namespace {

int32_t OneOf(std::initializer_list<int32_t> numbers, std::mt19937& random)
{
    return numbers.begin()[random() % numbers.size()];
}

// A picture of noise at any offset from an aligned address, under any colours.
template <typename Pass>
struct RandomPicture
{
    RandomPicture(int32_t width, int32_t height, std::mt19937& random)
        : source(static_cast<size_t>(width * height), random() % 17, random)
        , target(static_cast<size_t>(width * height), random() % 17, random)
    {
        pass.source = source.Data();
        pass.width = width;
        pass.height = height;
        pass.clips = random() % 2;
        pass.ditherThreshold = static_cast<int32_t>(random() % 32);
        for (int channel = 0; channel < 3; ++channel) {
            pass.multiplier[channel] = static_cast<uint16_t>(random() % 2 ? random() : 204);
            pass.summand[channel] = static_cast<int16_t>(
                OneOf({ 0, 0, 5, -5, 255, 256, -255, -256, 3000, -32768, 32767 }, random));
        }
    }

    // The vectors' picture, guards included, is the scalar one.
    template <typename Draw>
    void Compare(const Draw& draw, const Draw& drawScalar)
    {
        CAPTURE(pass.width);
        CAPTURE(pass.height);
        CAPTURE(pass.clips);
        CAPTURE(pass.ditherThreshold);
        GuardedRow<uint32_t> expected = target;
        for (int32_t y = 1; y < pass.height - 1; ++y) {
            pass.target = target.Data();
            draw(pass, y);
            pass.target = expected.Data();
            drawScalar(pass, y);
        }
        CHECK(target == expected);
    }

    GuardedRow<uint32_t> source;
    GuardedRow<uint32_t> target;
    Pass pass;
};

// A displacement in 1/32 pixel: mostly near, now and then any number.
template <typename Entry>
Entry Displacement(std::mt19937& random)
{
    const auto near = static_cast<int32_t>(random() % 2000) - 1000;
    return static_cast<Entry>(random() % 8 ? near : static_cast<int32_t>(random()));
}

template <typename Entry>
void CompareSuper(int32_t width, int32_t height, std::mt19937& random)
{
    RandomPicture<SuperTransformPass> picture(width, height, random);
    SuperTransformPass& pass = picture.pass;
    GuardedRow<Entry> map(static_cast<size_t>(width * height) * 2, random() % 17, random);
    for (int32_t i = 0; i < width * height * 2; ++i) {
        const int32_t pixel = i / 2;
        const int32_t own
            = i % 2 ? pixel / width - (height + 1) / 2 : pixel % width - (width + 1) / 2;
        map.Data()[i] = static_cast<Entry>(own * int64_t { 32 } + Displacement<Entry>(random));
    }
    if constexpr (sizeof(Entry) == 2)
        pass.map16 = map.Data();
    else
        pass.map32 = map.Data();
    if (random() % 2) {
        pass.sine = OneOf({ 51, -1024, 700, 32767, -32768, 1 << 20 }, random);
        pass.cosine = OneOf({ 1022, 1024, 0, -700, -32768, INT32_MIN }, random);
    }
    if (random() % 2) {
        pass.factorX = OneOf({ 1000, 1024, 0, -1024, 5000, INT32_MAX }, random);
        pass.factorY = OneOf({ 1000, 1024, 0, -1024, 5000, INT32_MIN }, random);
    }
    if (random() % 2) {
        pass.scrollX = OneOf({ 320, -64, 1 << 20, 1 << 30, INT32_MAX, INT32_MIN }, random);
        pass.scrollY = OneOf({ 320, -64, -(1 << 21), -(1 << 30), INT32_MAX, INT32_MIN }, random);
    }
    CAPTURE(pass.sine);
    CAPTURE(pass.cosine);
    CAPTURE(pass.factorX);
    CAPTURE(pass.factorY);
    CAPTURE(pass.scrollX);
    CAPTURE(pass.scrollY);
    picture.Compare(SuperTransformRow, scalar::SuperTransformRow);
}

void CompareDynamic(int32_t width, int32_t height, std::mt19937& random)
{
    RandomPicture<DynamicTransformPass> picture(width, height, random);
    DynamicTransformPass& pass = picture.pass;
    pass.gridWidth = width / 8 + 1;
    pass.gridHeight = height / 8 + 1;
    std::vector<int32_t> points(static_cast<size_t>(pass.gridWidth * pass.gridHeight) * 2);
    for (int32_t& point : points)
        point = Displacement<int32_t>(random);
    pass.points = points.data();
    picture.Compare(DynamicTransformRow, scalar::DynamicTransformRow);
}

}

TEST_CASE("The passes are the same at every instruction set, and leave the frame")
{
    const auto compare = [](int32_t width, int32_t height, int passes) {
        std::mt19937 random(static_cast<uint32_t>(width));
        for (int i = 0; i < passes; ++i) {
            CompareSuper<int16_t>(width, height, random);
            CompareSuper<int32_t>(width, height, random);
            CompareDynamic(width, height, random);
        }
    };
    ForEachInstructionSet([&compare] {
        for (int32_t width = 3; width <= 67; ++width)
            compare(width, 3 + width % 24, 5); // some below the vectors' fewest pixels
        for (const int32_t width :
            { 129, 130, 131, 132, 143, 145, 151, 258, 259, 300, 2047, 8192, 8193 })
            compare(width, 9, 3);
        compare(20, 8193, 1);
    });
}
