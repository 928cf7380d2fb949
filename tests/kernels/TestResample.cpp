#include "kernels/PixelsFromBytes.h"
#include "kernels/Resample.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <numeric>
#include <vector>

using namespace pxvis::kernels;

namespace {

constexpr uint32_t kGuard = 0xDEADBEEF;

// A row through all pieces, with guard words round the target.
std::vector<uint32_t> Stretched(const std::vector<uint32_t>& source, int32_t count)
{
    const auto size = static_cast<int32_t>(source.size());
    const auto room = static_cast<size_t>(MaxResampleCount(count, size));
    const auto columns = static_cast<size_t>(count);
    std::vector<ResampleSpan> spans(columns);
    std::vector<uint32_t> weights;
    for (size_t i = 0; i < columns; ++i) {
        std::vector<uint32_t> some(room + 1, kGuard);
        spans[i] = ResampleWeights(some.data(), static_cast<int64_t>(i), count, size);
        REQUIRE(some.back() == kGuard);
        weights.insert(weights.end(), some.begin(), some.begin() + spans[i].count);
    }
    std::vector<uint16_t> mixed(4 * columns + 1, 0xBEEF);
    ResampleRow(mixed.data(), source.data(), spans.data(), weights.data(), count);
    CHECK(mixed.back() == 0xBEEF);
    std::vector<uint32_t> sums(4 * columns + 1);
    sums.back() = kGuard;
    ResampleAddRow(sums.data(), mixed.data(), 16384, count);
    ResampleAddRow(sums.data(), mixed.data(), 49152, count);
    CHECK(sums.back() == kGuard);
    std::vector<uint32_t> target(columns + 1, kGuard);
    ResampleStoreRow(target.data(), sums.data(), count);
    CHECK(target.back() == kGuard);
    target.pop_back();
    return target;
}

}

TEST_CASE("Weights cover the source from end to end, evenly when it shrinks")
{
    for (int32_t source = 1; source <= 40; ++source)
        for (int32_t target = 1; target <= 67; ++target) {
            std::vector<double> share(static_cast<size_t>(source));
            for (int32_t i = 0; i < target; ++i) {
                std::vector<uint32_t> weights(
                    static_cast<size_t>(MaxResampleCount(target, source)));
                const ResampleSpan span = ResampleWeights(weights.data(), i, target, source);
                REQUIRE(span.first >= 0);
                REQUIRE(span.count >= 1);
                REQUIRE(span.first + span.count <= source);
                REQUIRE(
                    std::accumulate(weights.begin(), weights.begin() + span.count, 0u) == 65536);
                for (int32_t k = 0; k < span.count; ++k)
                    share[static_cast<size_t>(span.first + k)] += weights[static_cast<size_t>(k)];
            }
            for (const double s : share)
                if (target < source)
                    CHECK(s * source / target == doctest::Approx(65536).epsilon(0.002));
        }

    uint32_t weights[2] = {};
    const int64_t far = int64_t { 1 } << 40;
    CHECK(ResampleWeights(weights, far - 1, far, 16384).first == 16383);
    CHECK(ResampleWeights(weights, far / 2, far, 16384).first == 8191);
}

TEST_CASE("Smooth rows: an exact copy, averages, mixes, and no colour of what can't be seen")
{
    using Row = std::vector<uint32_t>;
    const Row opaque { 0xFF000000, 0xFFFFFFFF, 0xFF123456, 0xFF010203, 0xFFFEFDFC };
    CHECK(Stretched(opaque, 5) == opaque);
    CHECK(Stretched({ 0xFF000000, 0xFF0000FF }, 1) == Row { 0xFF000080 });
    CHECK(Stretched({ 0xFF000000, 0xFF000080 }, 4)
        == Row { 0xFF000000, 0xFF000020, 0xFF000060, 0xFF000080 });
    CHECK(Stretched({ 0xFF300000, 0xFF600000, 0xFF900000 }, 2) == Row { 0xFF400000, 0xFF800000 });
    // Green lies under nothing, so it leaves red as it was.
    CHECK(Stretched({ 0x0000FF00, 0xFFFF0000 }, 1) == Row { 0x80FF0000 });
    CHECK(Stretched({ 0x0000FF00, 0x00FF0000 }, 1) == Row { 0 });
    for (uint32_t alpha = 1; alpha < 256; ++alpha) {
        const uint32_t even = alpha << 24 | 0x40A0FF;
        for (const int32_t count : { 1, 3, 7, 20 })
            CHECK(Stretched(Row(7, even), count) == Row(static_cast<size_t>(count), even));
    }
}

TEST_CASE("Bytes become pixels, side by side or in steps, and nothing between them changes")
{
    std::vector<uint8_t> bytes(4 * 67);
    std::iota(bytes.begin(), bytes.end(), uint8_t { 1 });
    for (const int32_t channels : { 3, 4 })
        for (const ptrdiff_t step : { 1, -1, 3, -3 })
            for (int32_t count = 0; count <= 67; ++count) {
                std::vector<uint32_t> target(3 * 67 * 2 + 1, kGuard);
                const ptrdiff_t middle = 3 * 67;
                PixelsFromBytes(target.data() + middle, step, bytes.data(), channels, count);
                CHECK(std::count(target.begin(), target.end(), kGuard) == 3 * 67 * 2 + 1 - count);
                for (int32_t i = 0; i < count; ++i) {
                    const uint8_t* b = &bytes[static_cast<size_t>(i * channels)];
                    CHECK(target[static_cast<size_t>(middle + i * step)]
                        == ((channels == 4 ? b[3] : 255u) << 24 | b[0] * 0x10000u | b[1] * 0x100u
                            | b[2]));
                }
            }
}
