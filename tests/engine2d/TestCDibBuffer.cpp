#include "VisTesting.h"
#include "engine2d/CVisBufferHelper.h"

#include <doctest/doctest.h>

TEST_CASE("A ring of two images answers to offsets -1 to 1, and flips back and forth")
{
    CDibBuffer buffer;
    OQSize size { 1, 1 };
    CHECK(*buffer.GetSize(&size) == OQSize { 0, 0 });
    CHECK(buffer.GetBits(0) == nullptr);
    CHECK(buffer.GetBitmapInfo() == nullptr);
    buffer.Flip();

    buffer.MakeImages(7, 5);
    CHECK(*buffer.GetSize(&size) == OQSize { 7, 5 });
    uint32_t* first = buffer.GetBits(0);
    REQUIRE(first != nullptr);
    CHECK(first[0] == 0xFF000000);
    CHECK(buffer.GetBits(1) != first);
    CHECK(buffer.GetBits(-1) == buffer.GetBits(1));
    for (const int32_t outside : { 2, -2, INT32_MAX, INT32_MIN }) {
        CHECK(buffer.GetBits(outside) == nullptr);
        CHECK(buffer.GetImage(outside) == nullptr);
        CHECK(buffer.GetImageHandle(outside) == 0);
    }
    CVisBufferHelper helper(buffer);
    helper.Flip();
    CHECK(helper.Bits() == buffer.GetBits(0));
    CHECK(buffer.GetBits(1) == first);
    buffer.Flip();
    CHECK(buffer.GetBits(0) == first);

    buffer.MakeImages(100000, 100000);
    CHECK(buffer.GetBits(0) == nullptr);
}
