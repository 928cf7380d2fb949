#include "siblings/image/ImageTesting.h"

#include <chrono>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace {

using Font = std::unique_ptr<IOQFont>;

Font MakeFont(int32_t height, const OQChar* name = nullptr)
{
    OQFontDescriptor descriptor;
    descriptor.height = height;
    descriptor.typeName = name;
    Font font(OQSiblingModules::Get().ImageApp()->CreateFont(descriptor));
    REQUIRE(font);
    return font;
}

constexpr uint32_t white = 0xFFFFFF;

// The ink of a text in a box of its own picture.
OQRect InkWith(IOQFont& font, const OQChar* text, int32_t alignment, OQSize size = { 300, 120 })
{
    Image image = MakeImage(size.cx, size.cy);
    image->DrawText(text, { 0, 0, size.cx, size.cy }, white, &font, alignment, -1, -1);
    return InkOf(*image, 0);
}

std::u16string Repeat(std::u16string_view text, int count)
{
    std::u16string result;
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

}

TEST_CASE("A font's height is in pixels and stays within its limits, whatever it is asked for")
{
    CHECK(MakeFont(20)->GetHeight() == 20);
    const int32_t least = std::numeric_limits<int32_t>::min();
    const int32_t most = std::numeric_limits<int32_t>::max();
    CHECK(MakeFont(0)->GetHeight() == 1);
    CHECK(MakeFont(least)->GetHeight() == 1);
    CHECK(MakeFont(4096)->GetHeight() == 4096);
    CHECK(MakeFont(most)->GetHeight() == IOQFont::maximumHeight);
    OQFontDescriptor half;
    half.height = 41;
    half.scale = 0.5f;
    CHECK(Font(OQSiblingModules::Get().ImageApp()->CreateFont(half))->GetHeight() == 20);
    half.scale = std::numeric_limits<float>::quiet_NaN();
    CHECK(Font(OQSiblingModules::Get().ImageApp()->CreateFont(half))->GetHeight() == 1);

    // A capital of this family is 0.73 em high.
    Font font = MakeFont(50, u"DejaVu Sans");
    CHECK(std::abs(InkWith(*font, u"H", 0).Height() - 36) <= 2);
    const OQRect large = InkWith(*MakeFont(200, u"DejaVu Sans"), u"H", 0, { 300, 300 });
    CHECK(std::abs(large.Height() - 146) <= 2);
}

TEST_CASE("What is measured is what is drawn, and wraps at the width")
{
    Font font = MakeFont(20);
    Image image = MakeImage(300, 120);
    const OQSize line = image->MeasureText(u"Hamburg", font.get(), 0, 300);
    const OQRect ink = InkWith(*font, u"Hamburg", 0);
    CHECK(std::abs(line.cx - ink.right) <= 3);
    CHECK(ink.bottom <= line.cy);

    const OQSize two = image->MeasureText(u"Hamburg\r\nHam", font.get(), 0, 300);
    CHECK(two == OQSize { line.cx, 2 * line.cy });
    CHECK(image->MeasureText(u"Ham\nHamburg", font.get(), 0, 300) == two);
    CHECK(image->MeasureText(u"Hamburg\r\n", font.get(), 0, 300) == two);
    CHECK(image->MeasureText(u"Hamburg Hamburg", font.get(), 5, line.cx + 10) == two);
    // A word that is wider than the room is broken.
    const OQSize broken = image->MeasureText(u"HamburgHamburg", font.get(), 5, line.cx + 5);
    CHECK(broken.cy >= 2 * line.cy);
    CHECK(broken.cx <= line.cx + 5);

    CHECK(image->MeasureText(u"", font.get(), 5, 300) == OQSize {});
    CHECK(image->MeasureText(nullptr, font.get(), 5, 300) == OQSize {});
    CHECK(image->MeasureText(u"a", font.get(), 5, 0) == OQSize {});
    CHECK(image->MeasureText(u"a", font.get(), 5, -7) == OQSize {});
    CHECK(image->MeasureText(u"a", nullptr, 5, 99).cy > 10);
    Image empty(OQCreateImage());
    CHECK(empty->MeasureText(u"a", font.get(), 5, 300) == OQSize {});
}

TEST_CASE("Left is left and right is right, in scripts of either direction")
{
    Font font = MakeFont(20);
    for (const OQChar* text :
        { u"Hamburg", u"\u05E9\u05DC\u05D5\u05DD", u"\u0633\u0644\u0627\u0645" }) {
        const OQRect left = InkWith(*font, text, 0);
        const OQRect center = InkWith(*font, text, 5);
        const OQRect right = InkWith(*font, text, 10);
        CHECK(left.left < 5);
        CHECK(left.top < 12);
        CHECK(right.right > 295);
        CHECK(right.bottom > 108);
        CHECK(std::abs(center.left + center.right - 300) <= 3);
        CHECK(std::abs(center.top + center.bottom - 120) <= 12);
        CHECK(center.Width() == left.Width());
    }
    // In the middle of its lines, too.
    Image image = MakeImage(300, 120);
    image->DrawText(u"HHHHHHHH\nH", { 0, 0, 300, 120 }, white, font.get(), 1, -1, -1);
    const OQSize half = image->MeasureText(u"H", font.get(), 1, 300);
    image->FillRect({ 0, 0, 300, half.cy }, 0, 0, 0);
    const OQRect second = InkOf(*image, 0);
    CHECK(std::abs(second.left + second.right - 300) <= 3);
}

TEST_CASE("Letters of a word run from right to left where its script does, and join")
{
    Font font = MakeFont(40);
    Image image = MakeImage(300, 120);
    const auto width
        = [&](const OQChar* text) { return image->MeasureText(text, font.get(), 0, 300).cx; };
    // Joined letters are narrower than each on its own.
    CHECK(width(u"\u0633\u0633\u0633") < 3 * width(u"\u0633") - 5);

    // Vav is narrow and high; first in the text, it stands at the right end.
    image->DrawText(u"\u05D5\u05D5\u05D5\u05EA", { 0, 0, 300, 120 }, white, font.get(), 0, -1, -1);
    Image reversed = MakeImage(300, 120);
    reversed->DrawText(
        u"\u202D\u05D5\u05D5\u05D5\u05EA", { 0, 0, 300, 120 }, white, font.get(), 0, -1, -1);
    CHECK_FALSE(std::equal(image->GetBits(), image->GetBits() + 300 * 120, reversed->GetBits()));
}

TEST_CASE("A family that isn't there, or that would be a file or a pattern, is another one")
{
    const std::u16string endless(100'000, u'f');
    for (const OQChar* name : { u"", u"No such font", u"/etc/passwd", u"../DejaVuSans.ttf",
             u"DejaVu Sans:file=/etc/passwd", u",", u",,,,", u"%s%n", endless.c_str() }) {
        Font font = MakeFont(20, name);
        CHECK(InkWith(*font, u"Hamburg", 0).Width() > 40);
    }
    Font mono = MakeFont(20, u"DejaVu Sans Mono");
    Image image = MakeImage(300, 100);
    CHECK(image->MeasureText(u"iii", mono.get(), 0, 300)
        == image->MeasureText(u"WWW", mono.get(), 0, 300));

    // Weight and style count.
    OQFontDescriptor descriptor;
    descriptor.height = 40;
    descriptor.typeName = u"DejaVu Sans";
    descriptor.weight = 700;
    const Font bold(OQSiblingModules::Get().ImageApp()->CreateFont(descriptor));
    Font regular = MakeFont(40, u"DejaVu Sans");
    CHECK(image->MeasureText(u"WWW", bold.get(), 0, 300).cx
        > image->MeasureText(u"WWW", regular.get(), 0, 300).cx);
    descriptor.weight = std::numeric_limits<int32_t>::max();
    descriptor.italic = descriptor.strikeout = true;
    const Font struck(OQSiblingModules::Get().ImageApp()->CreateFont(descriptor));
    CHECK(InkWith(*struck, u".   .", 0).Height() > InkWith(*bold, u".   .", 0).Height() + 2);
}

TEST_CASE("The same text is laid out once, wherever it lies and in whatever colour")
{
    Font font = MakeFont(20);
    Font other = MakeFont(20);
    Image image = MakeImage(300, 120);
    for (int32_t frame = 0; frame < 20; ++frame) {
        // Two that alternate; one text fits its box, the other wraps.
        image->MeasureText(u"Hamburg", font.get(), 5, 300);
        image->DrawText(u"Hamburg", { frame, 0, 280, frame * 5 }, static_cast<uint32_t>(frame),
            font.get(), 5, -1, -1);
        image->MeasureText(u"Hamburg Hamburg", other.get(), 5, 100);
        image->DrawText(u"Hamburg Hamburg", { frame, frame - 40, frame + 100, frame + 60 },
            static_cast<uint32_t>(frame), other.get(), 5, -1, -1);
    }
    CHECK(font->GetLayoutCount() <= 2); // to measure it, and to draw it after the other's
    CHECK(other->GetLayoutCount() <= 2);
    const int64_t work = font->GetWork();
    image->DrawText(u"Hamburg", { 7, 7, 300, 90 }, white, font.get(), 5, -1, -1);
    CHECK(font->GetWork() == work);
    image->DrawText(u"Hamburg!", { 7, 7, 300, 90 }, white, font.get(), 5, -1, -1);
    CHECK(font->GetWork() > work);

    // What is kept gives the picture that a fresh font draws.
    Image first = MakeImage(300, 120);
    Image second = MakeImage(300, 120);
    for (const OQRect box : { OQRect { -20, -8, 90, 15 }, OQRect { 250, 100, 900, 300 } }) {
        first->DrawText(u"Ham burg", box, 0x80FF40, font.get(), 6, -1, -1);
        second->DrawText(u"Ham burg", box, 0x80FF40, MakeFont(20).get(), 6, -1, -1);
    }
    CHECK(std::equal(first->GetBits(), first->GetBits() + 300 * 120, second->GetBits()));
    CHECK(InkOf(*first, 0) != OQRect {});
}

TEST_CASE("A text much larger than the picture shows the part that lies in it, wherever it moves")
{
    std::u16string lines;
    for (int i = 0; i < 400; ++i)
        lines += i % 2 ? u"HHHHHH\n" : u"ii\n";
    Font font = MakeFont(30);
    Image image = MakeImage(100, 60);
    const OQSize size = image->MeasureText(lines.c_str(), font.get(), 0, 200);
    CHECK(size.cy > 10'000);
    for (int32_t top = 0; top > -size.cy; top -= 777) {
        Image fresh = MakeImage(100, 60);
        image->FillRect({ 0, 0, 100, 60 }, 0, 0, 0);
        const OQRect box { 0, top, 200, top + 1'000'000 };
        image->DrawText(lines.c_str(), box, white, font.get(), 0, -1, -1);
        fresh->DrawText(lines.c_str(), box, white, MakeFont(30).get(), 0, -1, -1);
        CHECK(std::equal(image->GetBits(), image->GetBits() + 6000, fresh->GetBits()));
        CHECK(InkOf(*image, 0) != OQRect {});
    }
    // Neighbouring places share what is kept.
    const int64_t work = font->GetWork();
    image->DrawText(lines.c_str(), { 0, -300, 200, 9000 }, white, font.get(), 0, -1, -1);
    const int64_t once = font->GetWork() - work;
    for (int32_t top = -301; top > -400; --top)
        image->DrawText(lines.c_str(), { 0, top, 200, 9000 }, white, font.get(), 0, -1, -1);
    CHECK(font->GetWork() - work <= 4 * once);
}

TEST_CASE("Texts made to cost much are laid out and drawn in time")
{
    constexpr int units = 8192;
    std::u16string unknown;
    std::u16string han;
    for (int i = 0; i < units; ++i) {
        unknown += static_cast<char16_t>(0xE000 + i % 6000);
        han += static_cast<char16_t>(0x4E00 + i);
    }
    const std::u16string texts[] = { Repeat(u"W", units), Repeat(u" ", units),
        Repeat(u"abcde ", units / 6), Repeat(Repeat(u"W", 99) + u" ", units / 100),
        u"W" + Repeat(u"\u0338", units), Repeat(u"\n", units), Repeat(u"a\n", units / 2),
        Repeat(u"a\u05D0", units / 2), Repeat(u"\u202Ea", units / 2), Repeat(u"a\u00AD", units / 2),
        Repeat(u"\U0001F468\u200D", units / 3), unknown, han };
    for (const std::u16string& text : texts) {
        CAPTURE(static_cast<int>(text[0]));
        for (const int32_t height : { 1, 20, 4096 }) {
            for (const int32_t width : { 1, 320, 1'000'000 }) {
                CAPTURE(height);
                CAPTURE(width);
                Font font = MakeFont(height);
                Image image = MakeImage(320, 240);
                const auto start = std::chrono::steady_clock::now();
                image->MeasureText(text.c_str(), font.get(), 0, 320);
                image->DrawText(text.c_str(), { 0, 0, width, 240 }, white, font.get(), 0, -1, -1);
                const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
                CHECK(time.count() < 5);
            }
        }
    }
}

TEST_CASE("Threads with a font and an image each may draw at once")
{
    Image alone = MakeImage(100, 30);
    alone->DrawText(u"Hamburg", { 1, 1, 98, 28 }, white, MakeFont(17).get(), 0, -1, -1);
    std::vector<std::jthread> threads;
    std::vector<Image> images;
    for (int k = 0; k < 4; ++k)
        images.push_back(MakeImage(100, 30));
    for (Image& image : images)
        threads.emplace_back([&image] {
            Font font = MakeFont(17);
            for (const OQChar* text : { u"a", u"b", u"Hamburg" }) {
                image->Clear(0, 0);
                image->DrawText(text, { 1, 1, 98, 28 }, white, font.get(), 0, -1, -1);
            }
        });
    threads.clear();
    for (const Image& image : images)
        CHECK(std::equal(alone->GetBits(), alone->GetBits() + 3000, image->GetBits()));
}
