#include "siblings/image/ImageTesting.h"

#include <limits>
#include <vector>

namespace {

constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();
constexpr int32_t kMost = std::numeric_limits<int32_t>::max();

}

TEST_CASE("A picture fills its rectangle, or keeps its shape in the middle of it, and is clipped")
{
    const struct
    {
        OQRect rect;
        bool keepShape;
        OQRect touched;
    } cases[] = {
        { { 0, 0, 40, 30 }, false, { 0, 0, 40, 30 } },
        { { 3, 4, 23, 14 }, true, { 3, 4, 23, 14 } },
        { { 0, 0, 40, 30 }, true, { 0, 5, 40, 25 } },
        { { 0, 0, 38, 10 }, true, { 9, 0, 29, 10 } },
        { { 10, 10, 11, 30 }, true, { 10, 19, 11, 20 } }, // never less than a pixel
        { { -20, -10, 20, 10 }, false, { 0, 0, 20, 10 } },
        { { 30, 20, 5000, 4000 }, false, { 30, 20, 40, 30 } },
        { { kLeast, kLeast, kMost, kMost }, false, { 0, 0, 40, 30 } },
        { { kLeast, kLeast, kMost, kMost }, true, { 0, 0, 40, 30 } },
        { { 40, 0, 60, 30 }, false, {} },
        { { kMost - 1, kMost - 1, kMost, kMost }, true, {} },
        { { 5, 5, 5, 9 }, false, {} },
        { { 9, 0, 5, 9 }, true, {} },
    };

    Image picture = MakeImage(20, 10);
    picture->Clear(0x0000FF, 255);
    for (const auto& c : cases) {
        Image target = MakeImage(40, 30);
        CHECK(picture->DrawTo(*target, c.rect, c.keepShape));
        CHECK(InkOf(*target, 0) == c.touched);
        if (c.touched.right)
            CHECK(PixelAt(*target, c.touched.left, c.touched.top) == 0x00FF0000);
    }
    Image empty(OQCreateImage());
    CHECK_FALSE(picture->DrawTo(*empty, { 0, 0, 9, 9 }, false));
    CHECK_FALSE(empty->DrawTo(*picture, { 0, 0, 9, 9 }, false));
}

TEST_CASE("A clipped drawing is part of the whole one, in whichever order they are drawn")
{
    Image picture = MakeImage(7, 5);
    for (uint32_t i = 0; i < 35; ++i)
        picture->GetBits()[i] = 0xFF000000 | i * 0x070503;
    for (const OQRect rect : { OQRect { 0, 0, 50, 33 }, OQRect { 0, 0, 4, 3 } }) {
        Image whole = MakeImage(60, 40);
        picture->DrawTo(*whole, rect, false);
        Image part = MakeImage(20, 20);
        const OQRect moved { rect.left - 2, rect.top - 1, rect.right - 2, rect.bottom - 1 };
        for (int again = 0; again < 2; ++again)
            picture->DrawTo(*part, moved, false);
        for (int32_t y = 0; y < 20; ++y)
            for (int32_t x = 0; x < 20; ++x)
                REQUIRE(PixelAt(*part, x, y) == PixelAt(*whole, x + 2, y + 1));
    }
}

TEST_CASE("Alpha lets the target through, whose own alpha stays")
{
    Image picture = MakeImage(3, 1);
    SetPixel(*picture, 0, 0, 0xFFFFFFFF);
    SetPixel(*picture, 1, 0, 0x80FFFFFF);
    SetPixel(*picture, 2, 0, 0x00FFFFFF);
    Image target = MakeImage(3, 1);
    target->Clear(0x000040, 0x33); // red
    CHECK(picture->DrawTo(*target, { 0, 0, 3, 1 }, true));
    CHECK(PixelAt(*target, 0, 0) == 0x33FFFFFF);
    CHECK(PixelAt(*target, 1, 0) == 0x33A08080); // (255 * 128 + 64 * 127) / 255 = 159.9
    CHECK(PixelAt(*target, 2, 0) == 0x33400000);

    // New pixels show at the next drawing, and a picture may be drawn on itself.
    picture->Clear(0xFFFFFF, 255);
    CHECK(picture->DrawTo(*target, { 0, 0, 3, 1 }, true));
    CHECK(PixelAt(*target, 2, 0) == 0x33FFFFFF);
    Image self = MakeImage(4, 1);
    self->Clear(0, 255);
    SetPixel(*self, 0, 0, 0xFF00FF00);
    CHECK(self->DrawTo(*self, { 2, 0, 6, 1 }, false));
    CHECK(PixelAt(*self, 2, 0) == 0xFF00FF00);
    CHECK(PixelAt(*self, 3, 0) == 0xFF000000);
}

TEST_CASE("What is stretched beforehand is drawn as the picture itself, and no larger than is seen")
{
    Image picture = MakeImage(9, 6);
    for (uint32_t i = 0; i < 54; ++i)
        picture->GetBits()[i] = i * 0x07153B65;
    const OQRect rects[] = { { 0, 0, 20, 20 }, { 3, 2, 12, 8 }, { 1, 1, 4, 3 }, { -30, -5, 14, 60 },
        { kLeast, kLeast, kMost, kMost }, { 19, 19, 20, 20 } };
    for (const OQRect& rect : rects) {
        for (const bool keepShape : { false, true }) {
            Image direct = MakeImage(20, 20);
            Image kept = MakeImage(20, 20);
            direct->Clear(0x204060, 9);
            kept->Clear(0x204060, 9);
            picture->DrawTo(*direct, rect, keepShape);
            Image stretched(OQCreateImage());
            OQRect place;
            REQUIRE(picture->StretchForDrawTo(*stretched, { 20, 20 }, rect, keepShape, place));
            CHECK((stretched->GetSize() == OQSize { place.Width(), place.Height() }));
            CHECK((place.left >= 0 && place.top >= 0 && place.right <= 20 && place.bottom <= 20));
            stretched->DrawTo(*kept, place, false);
            for (int i = 0; i < 400; ++i)
                REQUIRE(direct->GetBits()[i] == kept->GetBits()[i]);
        }
    }
    Image stretched = MakeImage(3, 3);
    OQRect place { 1, 2, 3, 4 };
    CHECK_FALSE(picture->StretchForDrawTo(*stretched, { 20, 20 }, { 20, 0, 40, 9 }, false, place));
    CHECK((place == OQRect {}));
    CHECK_FALSE(stretched->IsValid());
    CHECK_FALSE(picture->StretchForDrawTo(*stretched, { 20, 20 }, { 9, 0, 2, 9 }, true, place));
    CHECK_FALSE(picture->StretchForDrawTo(*stretched, { 0, 0 }, { 0, 0, 2, 9 }, true, place));
}
