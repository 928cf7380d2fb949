#include "kernels/Merge.h"

#include "KernelTesting.h"

using namespace pxvis::kernels;

namespace {

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

TEST_CASE("A transparent pixel is told by all 32 bits")
{
    for (const auto merge : { MergeReplace, MergeBlend, MergeAdd }) {
        std::vector<uint32_t> target(67, 0x10203040);
        std::vector<uint32_t> source(67, key);
        for (size_t i = 0; i < source.size(); i += 2)
            source[i] = key | 0xFF000000;
        merge(target.data(), source.data(), 67, key);
        for (size_t i = 0; i < target.size(); ++i)
            CHECK((target[i] == 0x10203040) == (i % 2 == 1));
    }
}

TEST_CASE("Merges are the same at every instruction set, and touch nothing outside the run")
{
    struct Forms
    {
        decltype(&MergeAdd) chosen;
        decltype(&MergeAdd) scalar;
    };

    ForEachInstructionSet([] {
        std::mt19937 random(1);
        for (const Forms& forms : { Forms { MergeReplace, scalar::MergeReplace },
                 Forms { MergeBlend, scalar::MergeBlend }, Forms { MergeAdd, scalar::MergeAdd } }) {
            for (int32_t count = 0; count <= 67; ++count) {
                const size_t offset = random() % 17;
                GuardedRow<uint32_t> source(static_cast<size_t>(count), random() % 17, random);
                for (int32_t i = 0; i < count; ++i)
                    source.Data()[i] = random() % 3 ? source.Data()[i] : key;
                GuardedRow<uint32_t> target(static_cast<size_t>(count), offset, random);
                GuardedRow<uint32_t> expected = target;
                forms.chosen(target.Data(), source.Data(), count, key);
                forms.scalar(expected.Data(), source.Data(), count, key);
                INFO("count " << count << ", offset " << offset);
                CHECK(target == expected);
            }
        }
    });
}
