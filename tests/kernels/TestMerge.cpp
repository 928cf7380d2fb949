#include "kernels/Merge.h"

#include <doctest/doctest.h>

#include <cstddef>
#include <vector>

using namespace pxvis::kernels;

namespace {

constexpr uint32_t guard = 0xDEADBEEF;
constexpr uint32_t key = 0x00FFFFFF;

}

TEST_CASE("Blend halves each byte on its own, and add stops at 255 in each, alpha included")
{
    uint32_t target[] = { 0xFF01FF00, 0x00000001 };
    const uint32_t source[] = { 0xFF02FFFF, 0x00000002 };
    MergeBlend(target, source, 2, key);
    CHECK(target[0] == 0xFF01FF7F);
    CHECK(target[1] == 0x00000001);

    uint32_t sum = 0xFF80FF01;
    const uint32_t addend = 0x0280017F;
    MergeAdd(&sum, &addend, 1, key);
    CHECK(sum == 0xFFFFFF80);
}

TEST_CASE("A transparent pixel is told by all 32 bits, and nothing outside the run is touched")
{
    using Merge = void (*)(uint32_t*, const uint32_t*, int32_t, uint32_t);
    for (const Merge merge : { MergeReplace, MergeBlend, MergeAdd }) {
        for (int32_t count = 0; count <= 67; ++count) {
            std::vector<uint32_t> target(static_cast<size_t>(count) + 2, guard);
            std::vector<uint32_t> source(static_cast<size_t>(count) + 2, 0xFFFFFFFF);
            for (int32_t i = 1; i <= count; ++i) {
                target[static_cast<size_t>(i)] = 0x10203040;
                source[static_cast<size_t>(i)] = i % 2 ? key : key | 0xFF000000;
            }
            merge(target.data() + 1, source.data() + 1, count, key);
            CHECK(target.front() == guard);
            CHECK(target.back() == guard);
            for (int32_t i = 1; i <= count; ++i)
                CHECK((target[static_cast<size_t>(i)] == 0x10203040) == (i % 2 == 1));
        }
    }
}
