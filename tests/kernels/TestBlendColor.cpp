#include "kernels/BlendColor.h"

#include "KernelTesting.h"

using namespace pxvis::kernels;

namespace {

using Blend = void (*)(uint32_t*, int32_t, uint32_t);

constexpr uint32_t guard = 0xDEADBEEF;

uint32_t Blended(Blend blend, uint32_t target, uint32_t pixel, int turns = 1)
{
    for (int i = 0; i < turns; ++i)
        blend(&target, 1, pixel);
    return target;
}

}

TEST_CASE("Each byte is blended on its own and stays between 0 and 255, alpha included")
{
    CHECK(Blended(ReplaceColor, 0xFF123456, 0x00ABCDEF) == 0x00ABCDEF);
    CHECK(Blended(AddColor, 0xF00180FF, 0x0F0280FF) == 0xFF03FFFF);
    CHECK(Blended(SubtractColor, 0xF00180FF, 0x0F0280FE) == 0xE1000001);
    CHECK(Blended(AverageColor, 0xFF0102FF, 0x000200FF) == 0x7F0101FF);
}

TEST_CASE("After 255 turns a blend changes nothing any more, and nothing beside the run ever")
{
    for (const Blend blend : { ReplaceColor, AddColor, SubtractColor, AverageColor }) {
        for (uint32_t byte = 0; byte < 256; ++byte) {
            for (const uint32_t pixel : { 0x01020480u, 0x00FFFE7Fu, 0u }) {
                const uint32_t atRest = Blended(blend, byte * 0x01010101, pixel, 255);
                REQUIRE(Blended(blend, atRest, pixel) == atRest);
            }
        }
        for (int32_t count = 0; count <= 67; ++count) {
            std::vector<uint32_t> target(static_cast<size_t>(count) + 2, 0x80808080);
            target.front() = target.back() = guard;
            blend(target.data() + 1, count, 0x01010101);
            CHECK(target.front() == guard);
            CHECK(target.back() == guard);
            for (size_t i = 1; i < target.size() - 1; ++i)
                CHECK(target[i] == Blended(blend, 0x80808080, 0x01010101));
        }
    }
}

TEST_CASE("Colours are blended the same at every instruction set")
{
    ForEachInstructionSet([] {
        std::mt19937 random(1);
        for (int32_t count = 0; count <= 67; ++count) {
            GuardedRow<uint32_t> target(static_cast<size_t>(count), random() % 17, random);
            GuardedRow<uint32_t> expected = target;
            const auto pixel = static_cast<uint32_t>(random());
            AddColor(target.Data(), count, pixel);
            scalar::AddColor(expected.Data(), count, pixel);
            CHECK(target == expected);
            SubtractColor(target.Data(), count, pixel ^ 0x80808080);
            scalar::SubtractColor(expected.Data(), count, pixel ^ 0x80808080);
            CHECK(target == expected);
        }
    });
}
