#include "kernels/I420FromPixels.h"

#include "KernelTesting.h"

#include <algorithm>
#include <cmath>

using namespace pxvis::kernels;

namespace {

struct Yuv
{
    int luma, cb, cr;
};

Yuv OfPlain(uint32_t pixel)
{
    const uint32_t row[] = { pixel, pixel };
    uint8_t luma[4];
    uint8_t cb = 0;
    uint8_t cr = 0;
    I420FromPixels({ luma, luma + 2, &cb, &cr }, row, row, 2);
    CHECK(std::count(luma, luma + 4, luma[0]) == 4);
    return { luma[0], cb, cr };
}

}

TEST_CASE("Each colour is the nearest of BT.709's limited range, and greys have no chroma")
{
    for (uint32_t grey = 0; grey < 256; ++grey) {
        const Yuv yuv = OfPlain(grey * 0x010101 | 0x80000000);
        REQUIRE(yuv.luma == std::lround(16 + grey * 219 / 255.0));
        REQUIRE(yuv.cb == 128);
        REQUIRE(yuv.cr == 128);
    }
    for (uint32_t red = 0; red < 256; red += 15)
        for (uint32_t green = 0; green < 256; green += 15)
            for (uint32_t blue = 0; blue < 256; blue += 15) {
                const Yuv yuv = OfPlain(red << 16 | green << 8 | blue);
                const double light = (0.2126 * red + 0.7152 * green + 0.0722 * blue) / 255;
                REQUIRE(std::abs(16 + 219 * light - yuv.luma) < 0.52);
                REQUIRE(std::abs(128 + 224 * (blue / 255.0 - light) / 1.8556 - yuv.cb) < 0.52);
                REQUIRE(std::abs(128 + 224 * (red / 255.0 - light) / 1.5748 - yuv.cr) < 0.52);
            }
}

TEST_CASE("Chroma is of the pixel in the middle by half and of its neighbours by a quarter each")
{
    // Blue's own chroma is 240, that of black 128.
    for (int blue = 0; blue < 4; ++blue) {
        uint32_t upper[4] = {};
        const uint32_t lower[4] = {};
        upper[blue] = 0xFF;
        uint8_t luma[8];
        uint8_t cb[2];
        uint8_t cr[2];
        I420FromPixels({ luma, luma + 4, cb, cr }, upper, lower, 4);
        const int part[4][2] = { { 3, 0 }, { 1, 1 }, { 0, 2 }, { 0, 1 } }; // of 8
        CHECK(cb[0] == 128 + 14 * part[blue][0]);
        CHECK(cb[1] == 128 + 14 * part[blue][1]);
        CHECK(luma[blue] == 32);
    }
}

TEST_CASE("I420 is the same at every instruction set, and touches nothing outside its rows")
{
    ForEachInstructionSet([] {
        std::mt19937 random(1);
        for (int32_t width = 0; width <= 134; width += 2) {
            const auto count = static_cast<size_t>(width);
            GuardedRow<uint32_t> upper(count, random() % 17, random);
            GuardedRow<uint32_t> lower(count, random() % 17, random);
            for (int32_t x = 0; x < width; x += 3) // extremes
                upper.Data()[x] = lower.Data()[x] = random() % 2 ? 0xFFFFFFFF : 0;
            GuardedRow<uint8_t> luma(2 * count, random() % 17, random);
            GuardedRow<uint8_t> chroma(count, random() % 17, random);
            GuardedRow<uint8_t> expectedLuma = luma;
            GuardedRow<uint8_t> expectedChroma = chroma;
            const auto rowsOf = [&](GuardedRow<uint8_t>& l, GuardedRow<uint8_t>& c) {
                return I420Rows { l.Data(), l.Data() + width, c.Data(), c.Data() + width / 2 };
            };
            I420FromPixels(rowsOf(luma, chroma), upper.Data(), lower.Data(), width);
            scalar::I420FromPixels(
                rowsOf(expectedLuma, expectedChroma), upper.Data(), lower.Data(), width);
            INFO("width " << width);
            CHECK(luma == expectedLuma);
            CHECK(chroma == expectedChroma);
        }
    });
}
