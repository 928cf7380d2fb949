#include "kernels/LinearLight.h"

#include <doctest/doctest.h>

#include <cstddef>
#include <vector>

using namespace pxvis::kernels;

TEST_CASE("Light rises with each byte, from none to all, along the sRGB curve")
{
    const uint16_t* light = LinearLight();
    CHECK(light[0] == 0);
    CHECK(light[1] == 19); // 64000 / 255 / 12.92 = 19.43
    CHECK(light[10] == 194);
    CHECK(light[128] == 13815); // 0.21586
    CHECK(light[188] == 32185); // 0.50288
    CHECK(light[255] == linearLightFull);
    for (int byte = 1; byte < 256; ++byte)
        CHECK(light[byte] > light[byte - 1]);
}

TEST_CASE("A row is summed up in its cells, of every pixel or of every few, whatever the first")
{
    constexpr uint32_t one = 0xFF010A80; // light 19, 194, 13815
    for (const int32_t step : { 1, 5, 13 })
        for (int32_t first = 0; first < step; ++first)
            for (int32_t width = 3; width <= 67; ++width) {
                const std::vector<uint32_t> row(static_cast<size_t>(width), one);
                const int32_t ends[] = { 1, width / 2, width };
                LinearLightSum sums[3];
                SumLinearLight(sums, ends, 3, row.data(), first, step);
                for (int column = 0; column < 3; ++column) {
                    uint32_t count = 0;
                    for (int32_t x = column > 0 ? ends[column - 1] : 0; x < ends[column]; ++x)
                        count += x % step == first ? 1 : 0;
                    REQUIRE(sums[column].pixels == count);
                    REQUIRE(sums[column].red == count * 19);
                    REQUIRE(sums[column].green == count * 194);
                    REQUIRE(sums[column].blue == count * 13815);
                }
            }
}

TEST_CASE("A mixture goes from one picture to the other, halfway at half their light")
{
    std::vector<uint8_t> table(size_t { 256 } * 256);
    const auto mix = [&](uint32_t from, uint32_t to, int32_t weight) {
        FillMixTable(table.data(), weight);
        uint32_t mixed = 0;
        MixLinearLight(&mixed, &from, &to, 1, table.data());
        return mixed;
    };
    CHECK(mix(0x00000000, 0x12FFFFFF, 128) == 0x12BCBCBC); // 188: half the light
    CHECK(mix(0xFFFF8000, 0x00008000, 64) == 0x00E18000); // three quarters
    for (const int32_t weight : { 0, 256 }) {
        FillMixTable(table.data(), weight);
        for (uint32_t from = 0; from < 256; ++from)
            for (uint32_t to = 0; to < 256; ++to)
                REQUIRE(table[from << 8 | to] == (weight == 0 ? from : to));
    }
}
