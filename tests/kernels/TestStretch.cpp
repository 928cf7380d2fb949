#include "kernels/Stretch.h"

#include "KernelTesting.h"

#include <cmath>
#include <utility>

using pxvis::kernels::Stretch;
using pxvis::kernels::StretchRows;

namespace {

std::vector<uint32_t> Noise(int width, int height)
{
    std::mt19937 random(3);
    std::vector<uint32_t> bits(static_cast<size_t>(width * height));
    for (uint32_t& pixel : bits)
        pixel = static_cast<uint32_t>(random());
    return bits;
}

}

TEST_CASE("At equal size the stretch is a copy, and the sign of the strides turns it over")
{
    const std::vector<uint32_t> source = Noise(5, 3);
    std::vector<uint32_t> target(15);
    Stretch(target.data(), 5, 5, 3, source.data(), 5, 5, 3);
    CHECK(target == source);

    Stretch(target.data() + 10, -5, 5, 3, source.data(), 5, 5, 3);
    for (size_t x = 0; x < 5; ++x)
        for (size_t y = 0; y < 3; ++y)
            REQUIRE(target[(2 - y) * 5 + x] == source[y * 5 + x]);
}

TEST_CASE("Doubling weighs neighbours three to one, halving averages pairs")
{
    const std::vector<uint32_t> two { 0x00000000, 0xFF804000 };
    std::vector<uint32_t> four(4);
    Stretch(four.data(), 4, 4, 1, two.data(), 2, 2, 1);
    // 255 / 4 = 63.75, 255 * 3 / 4 = 191.25
    CHECK(four == std::vector<uint32_t> { 0, 0x40201000, 0xBF603000, 0xFF804000 });

    const std::vector<uint32_t> square { 0x10, 0x20, 0x30, 0x42 };
    uint32_t one = 0;
    Stretch(&one, 1, 1, 1, square.data(), 2, 2, 2);
    CHECK(one == 0x29); // 40.5 rounded up
}

TEST_CASE("Any stretch stays near the real-number one and inside its target")
{
    const int sizes[][4] = { { 7, 5, 13, 11 }, { 64, 48, 100, 30 }, { 1, 1, 9, 4 },
        { 3, 200, 1, 7 }, { 40, 2, 39, 2 } };
    for (const auto& [sw, sh, tw, th] : sizes) {
        const std::vector<uint32_t> source = Noise(sw, sh);
        const int stride = tw + 3;
        std::vector<uint32_t> target(static_cast<size_t>(stride * th), 0xDEADBEEF);
        Stretch(target.data(), stride, tw, th, source.data(), sw, sw, sh);
        for (int y = 0; y < th; ++y)
            for (int x = 0; x < stride; ++x) {
                const uint32_t got = target[static_cast<size_t>(y * stride + x)];
                if (x >= tw) {
                    REQUIRE(got == 0xDEADBEEF);
                    continue;
                }
                const auto place = [](int i, int to, int from) {
                    return std::min(std::max((i + 0.5) * from / to - 0.5, 0.0), from - 1.0);
                };
                const double px = place(x, tw, sw);
                const double py = place(y, th, sh);
                const int x0 = static_cast<int>(px);
                const int y0 = static_cast<int>(py);
                const int x1 = std::min(x0 + 1, sw - 1);
                const int y1 = std::min(y0 + 1, sh - 1);
                for (int shift = 0; shift < 32; shift += 8) {
                    const auto at = [&](int sx, int sy) -> double {
                        return source[static_cast<size_t>(sy * sw + sx)] >> shift & 0xFF;
                    };
                    const double fx = px - x0;
                    const double fy = py - y0;
                    const double wanted = (at(x0, y0) * (1 - fx) + at(x1, y0) * fx) * (1 - fy)
                        + (at(x0, y1) * (1 - fx) + at(x1, y1) * fx) * fy;
                    // Weights in 1/256 move it by 255/256 an axis at most, rounding by 1/2.
                    REQUIRE(std::abs(wanted - (got >> shift & 0xFF)) <= 2.5);
                }
            }
    }
}

TEST_CASE("Rows stretched in parts are those of the whole")
{
    const std::vector<uint32_t> source = Noise(7, 5);
    std::vector<uint32_t> whole(13 * 11);
    Stretch(whole.data(), 13, 13, 11, source.data(), 7, 7, 5);
    std::vector<uint32_t> parts(13 * 11);
    for (const auto& [first, last] : { std::pair { 0, 4 }, { 4, 4 }, { 4, 5 }, { 5, 11 } })
        StretchRows(parts.data() + 13 * first, 13, 13, 11, source.data(), 7, 7, 5, first, last);
    CHECK(parts == whole);
}

TEST_CASE("Stretches are the same at every instruction set, and touch nothing outside their target")
{
    const auto check = [](int sw, int sh, int tw, int th, std::mt19937& random) {
        INFO(sw << "x" << sh << " to " << tw << "x" << th);
        const size_t offset = random() % 17;
        const int stride = tw + static_cast<int>(random() % 5);
        const int first = static_cast<int>(random() % static_cast<uint32_t>(th));
        GuardedRow<uint32_t> source(static_cast<size_t>(sw * sh), random() % 17, random);
        GuardedRow<uint32_t> target(static_cast<size_t>(stride * th), offset, random);
        GuardedRow<uint32_t> expected = target;
        StretchRows(target.Data(), stride, tw, th, source.Data(), sw, sw, sh, first, th);
        pxvis::kernels::scalar::StretchRows(
            expected.Data(), stride, tw, th, source.Data(), sw, sw, sh, first, th);
        CHECK(target == expected);
    };
    ForEachInstructionSet([&] {
        std::mt19937 random(1);
        for (int width = 1; width <= 67; ++width)
            for (const int sourceWidth : { 1, 2, width, width * 2, 41, 67 })
                check(sourceWidth, 1 + width % 6, width, 1 + width % 8, random);
        for (const int width : { 511, 513, 1100 })
            check(700, 3, width, 5, random);
    });
}

TEST_CASE("Bytes of 255 and rows of extremes stretch without a carry into their neighbours")
{
    ForEachInstructionSet([] {
        std::vector<uint32_t> source(40 * 4);
        for (size_t i = 0; i < source.size(); ++i)
            source[i] = i / 40 % 2 == i % 2 ? 0xFF00FF00 : 0x00FF00FF;
        for (const bool white : { false, true }) {
            if (white)
                std::fill(source.begin(), source.end(), 0xFFFFFFFF);
            std::vector<uint32_t> target(97 * 61);
            std::vector<uint32_t> expected(97 * 61);
            Stretch(target.data(), 97, 97, 61, source.data(), 40, 40, 4);
            pxvis::kernels::scalar::StretchRows(
                expected.data(), 97, 97, 61, source.data(), 40, 40, 4, 0, 61);
            CHECK(target == expected);
        }
    });
}
