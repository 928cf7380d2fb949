#include "kernels/TransformRow.h"

#include <doctest/doctest.h>

#include <cstddef>
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
