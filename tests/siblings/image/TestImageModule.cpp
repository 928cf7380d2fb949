#include "SlotOf.h"
#include "foundation/OQDllString.h"
#include "foundation/OQStringArray.h"
#include "siblings/image/ImageTesting.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <elf.h>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();
constexpr int32_t kMost = std::numeric_limits<int32_t>::max();

// Names of the symbols that a shared library defines for others.
std::vector<std::string> ExportsOf(const fs::path& path)
{
    const std::string bytes = BytesOf(path);
    const auto at = [&]<typename T>(T* out, size_t offset) {
        REQUIRE(offset + sizeof(T) <= bytes.size());
        std::memcpy(out, bytes.data() + offset, sizeof(T));
    };
    Elf64_Ehdr header {};
    at(&header, 0);
    std::vector<Elf64_Shdr> sections(header.e_shnum);
    for (size_t i = 0; i < sections.size(); ++i)
        at(&sections[i], header.e_shoff + i * sizeof(Elf64_Shdr));
    std::vector<std::string> names;
    for (const Elf64_Shdr& section : sections) {
        if (section.sh_type != SHT_DYNSYM)
            continue;
        for (size_t offset = 0; offset < section.sh_size; offset += sizeof(Elf64_Sym)) {
            Elf64_Sym symbol {};
            at(&symbol, section.sh_offset + offset);
            if (symbol.st_shndx != SHN_UNDEF)
                names.emplace_back(
                    bytes.data() + sections[section.sh_link].sh_offset + symbol.st_name);
        }
    }
    return names;
}

}

TEST_CASE("The module shows one symbol")
{
    CHECK(ExportsOf(PXVIS_BINARY_DIR "/bin/OQImage.so")
        == std::vector<std::string> { "GetOQImageAppDLL" });
}

TEST_CASE("Each operation keeps its slot, which modules built at other times rely on")
{
    // The destructor takes the first two.
    const long slots[] = { SlotOf(&IOQImage::SetOption), SlotOf(&IOQImage::SetOption2),
        SlotOf(&IOQImage::Create), SlotOf(&IOQImage::Clear), SlotOf(&IOQImage::GetBits),
        SlotOf(&IOQImage::GetSize), SlotOf(&IOQImage::GetImageHandle),
        SlotOf(&IOQImage::GetBitmapInfo), SlotOf(&IOQImage::FillRect), SlotOf(&IOQImage::DrawLine),
        SlotOf(&IOQImage::CopyRect), SlotOf(&IOQImage::Blit), SlotOf(&IOQImage::DrawText),
        SlotOf(&IOQImage::SavePng), SlotOf(&IOQImage::Load), SlotOf(&IOQImage::LoadFromHost),
        SlotOf(&IOQImage::IsValid), SlotOf(&IOQImage::DrawTo), SlotOf(&IOQImage::SaveJpeg),
        SlotOf(&IOQImage::GetLoadedPixels), SlotOf(&IOQImage::StretchForDrawTo),
        SlotOf(&IOQImage::MeasureText) };
    for (size_t i = 0; i < std::size(slots); ++i)
        CHECK(slots[i] == static_cast<long>(i) + 2);
    CHECK(SlotOf(&IOQImageApp::Initialize) == 0);
    CHECK(SlotOf(&IOQImageApp::Uninitialize) == 1);
    CHECK(SlotOf(&IOQImageApp::CreateImage) == 2);
    CHECK(SlotOf(&IOQImageApp::ListFonts) == 3);
    CHECK(SlotOf(&IOQImageApp::CreateFont) == 4);
    CHECK(SlotOf(&IOQFont::GetHeight) == 2);
    CHECK(SlotOf(&IOQFont::GetLayoutCount) == 3);
    CHECK(SlotOf(&IOQFont::GetWork) == 4);
}

TEST_CASE("The fonts are listed by name, each once, in order")
{
    OQString list;
    OQDllString names(list);
    REQUIRE(OQSiblingModules::Get().ImageApp()->ListFonts(names));
    OQStringArray fonts;
    list.Split(u'\n', fonts);
    CHECK(list.Find(u"DejaVu Sans") >= 0);
    for (int i = 1; i < fonts.GetCount(); ++i)
        CHECK(fonts[i - 1].ToUtf8() < fonts[i].ToUtf8());
}

TEST_CASE("A picture is made black and transparent, and a refused one is empty")
{
    Image image = MakeImage(4, 3);
    image->SetOption(1);
    image->SetOption2(1);
    CHECK(image->GetSize() == OQSize { 4, 3 });
    CHECK(std::all_of(
        image->GetBits(), image->GetBits() + 12, [](uint32_t pixel) { return pixel == 0; }));
    CHECK(image->GetImageHandle() != 0);
    REQUIRE(image->GetBitmapInfo());
    CHECK(image->GetBitmapInfo()->strideBytes == 16);
    image->Clear(0x0000FF, 0x80);
    CHECK(PixelAt(*image, 3, 2) == 0x80FF0000);

    const int32_t refused[][2] = { { 0, 5 }, { 5, 0 }, { -1, 5 }, { 16385, 1 }, { 1, 16385 },
        { 16384, 4097 }, { kMost, kMost }, { kLeast, kLeast } };
    for (const auto& [width, height] : refused) {
        CHECK_FALSE(image->Create(width, height, 0, 0));
        CHECK(image->GetBits() == nullptr);
        CHECK(image->GetSize() == OQSize {});
        CHECK(image->GetImageHandle() == 0);
        CHECK(image->GetBitmapInfo() == nullptr);
    }
    CHECK(image->Create(16384, 4096, 0, 0));
}

TEST_CASE("Every operation on an empty image does nothing")
{
    Image empty(OQCreateImage());
    REQUIRE(empty);
    Image image = MakeImage(2, 2);
    uint32_t target = 5;
    empty->Clear(1, 1);
    empty->FillRect({ 0, 0, 9, 9 }, 1, 255, 255);
    empty->DrawLine(0, 0, 9, 9, 1, 255);
    empty->CopyRect(*image, { 0, 0, 2, 2 }, 0, 0);
    empty->DrawText(u"text", { 0, 0, 9, 9 }, 1, nullptr, 0, 1, -1);
    image->CopyRect(*empty, { 0, 0, 2, 2 }, 0, 0);
    CHECK_FALSE(empty->Blit(&target, 1, 1, 4));
    CHECK_FALSE(empty->SavePng(u"/tmp/never.png", true));
    CHECK(target == 5);
    CHECK(InkOf(*image, 0) == OQRect {});
}

TEST_CASE("Fills and lines take colours with red lowest and stop at the edges")
{
    Image image = MakeImage(8, 6);
    image->FillRect({ 5, 4, 7, 100 }, 0x332211, 255, 255);
    CHECK(InkOf(*image, 0) == OQRect { 5, 4, 7, 6 });
    CHECK(PixelAt(*image, 5, 4) == 0xFF112233);
    CHECK(PixelAt(*image, 6, 5) == 0xFF112233);

    image->Clear(0, 0);
    const OQRect nothing[] = { { 5, 0, 5, 6 }, { 6, 0, 2, 6 }, { 0, 5, 8, 1 }, { 8, 0, 20, 6 },
        { -9, 0, 0, 6 }, { kMost, kMost, kLeast, kLeast } };
    for (const OQRect& rect : nothing)
        image->FillRect(rect, 0xFFFFFF, 255, 255);
    CHECK(InkOf(*image, 0) == OQRect {});
    image->FillRect({ kLeast, kLeast, kMost, kMost }, 1, 0, 255);
    CHECK(PixelAt(*image, 0, 0) == 0x00010000);
    CHECK(PixelAt(*image, 7, 5) == 0x00010000);

    image->Clear(0, 0);
    image->DrawLine(-3, 2, 3, 2, 0x7F000080, 255); // the colour's top byte is the alpha
    CHECK(InkOf(*image, 0) == OQRect { 0, 2, 4, 3 });
    CHECK(PixelAt(*image, 3, 2) == 0x7F800000);
    image->Clear(0, 0);
    image->DrawLine(1, 0, 3, 5, 0xFF, 255);
    CHECK(PixelAt(*image, 1, 0) == 0xFF0000); // the top row, though it lies last in memory
    CHECK(PixelAt(*image, 3, 5) == 0xFF0000);
}

TEST_CASE("A copy is clipped to both pictures and may move inside one")
{
    Image source = MakeImage(6, 6);
    for (int32_t y = 0; y < 6; ++y)
        for (int32_t x = 0; x < 6; ++x)
            source->FillRect({ x, y, x + 1, y + 1 }, static_cast<uint32_t>(1 + x + 10 * y), 9, 0);
    const auto marked = [](int32_t x, int32_t y) {
        return 0x09000000u | static_cast<uint32_t>(1 + x + 10 * y) << 16;
    };

    const struct
    {
        OQRect from;
        int32_t x;
        int32_t y;
        OQRect ink;
    } cases[] = {
        { { 1, 2, 3, 4 }, 2, 1, { 2, 1, 4, 3 } },
        { { -2, -2, 3, 3 }, 0, 0, { 2, 2, 4, 4 } }, // starts outside the source
        { { 0, 0, 6, 6 }, -4, -3, { 0, 0, 2, 3 } }, // starts outside the target
        { { 4, 4, 99, 99 }, 1, 1, { 1, 1, 3, 3 } }, // ends outside the source
        { { 0, 0, 6, 6 }, 3, 3, { 3, 3, 4, 4 } }, // ends outside the target
        { { 3, 0, 1, 6 }, 0, 0, {} }, // reversed
        { { 0, 0, 6, 6 }, 4, 0, {} },
        { { kLeast, kLeast, kMost, kMost }, kLeast, kLeast, { 0, 0, 4, 4 } },
        { { kLeast, 0, kMost, 6 }, kMost, 0, {} },
    };

    for (const auto& c : cases) {
        Image target = MakeImage(4, 4);
        target->CopyRect(*source, c.from, c.x, c.y);
        CHECK(InkOf(*target, 0) == c.ink);
        for (int32_t y = c.ink.top; y < c.ink.bottom; ++y)
            for (int32_t x = c.ink.left; x < c.ink.right; ++x)
                CHECK(PixelAt(*target, x, y)
                    == marked(x - (c.x - c.from.left), y - (c.y - c.from.top)));
    }

    source->CopyRect(*source, { 0, 0, 5, 5 }, 1, 1);
    for (int32_t y = 1; y < 6; ++y)
        for (int32_t x = 1; x < 6; ++x)
            CHECK(PixelAt(*source, x, y) == marked(x - 1, y - 1));
}

TEST_CASE("A blit puts the top row first, or last with a stride that goes back")
{
    Image image = MakeImage(2, 2);
    image->FillRect({ 0, 0, 2, 1 }, 0x0000FF, 255, 0); // red above black
    uint32_t down[6] = { 1, 1, 1, 1, 1, 1 };
    CHECK(image->Blit(down, 2, 2, 12));
    CHECK(std::equal(
        down, down + 6, std::vector<uint32_t> { 0xFFFF0000, 0xFFFF0000, 1, 0, 0, 1 }.begin()));
    uint32_t up[4] = {};
    CHECK(image->Blit(up + 2, 2, 2, -8));
    CHECK(up[0] == 0);
    CHECK(up[2] == 0xFFFF0000);

    uint32_t one = 7;
    CHECK_FALSE(image->Blit(nullptr, 1, 1, 4));
    CHECK_FALSE(image->Blit(&one, 0, 1, 4));
    CHECK_FALSE(image->Blit(&one, 1, -1, 4));
    CHECK_FALSE(image->Blit(&one, 2, 1, 4)); // rows would overlap
    CHECK_FALSE(image->Blit(&one, 1, 1, 6));
    CHECK_FALSE(image->Blit(&one, 1, 1, kLeast + 2));
    CHECK_FALSE(image->Blit(reinterpret_cast<char*>(&one) + 1, 1, 1, 4));
    CHECK(one == 7);
}

TEST_CASE("Text leaves ink inside its rectangle and none outside, and no alpha byte changes")
{
    Image image = MakeImage(120, 40);
    image->Clear(0, 0x5A);
    const OQRect box { 20, 10, 50, 20 };
    image->DrawText(u"fps: 60.0 and more gjpq\u00C5", box, 0x00FF8000, nullptr, 0, 1, -1);
    const OQRect ink = InkOf(*image, 0x5A000000);
    CHECK(ink.Width() > 15);
    CHECK(ink.Height() > 6);
    CHECK(ink.left >= box.left);
    CHECK(ink.top >= box.top);
    CHECK(ink.right <= box.right);
    CHECK(ink.bottom <= box.bottom);
    uint32_t most = 0;
    for (int32_t y = 0; y < 40; ++y)
        for (int32_t x = 0; x < 120; ++x) {
            const uint32_t pixel = PixelAt(*image, x, y);
            REQUIRE((pixel >> 24) == 0x5A);
            REQUIRE((pixel & 0xFF0000) == 0); // the colour has no red
            most = std::max(most, pixel & 0xFF);
        }
    CHECK(most > 0xC0); // and much blue

    // The same again gives the same; half the text cut off at the picture's edge does no harm.
    Image again = MakeImage(120, 40);
    again->Clear(0, 0x5A);
    again->DrawText(u"fps: 60.0 and more gjpq\u00C5", box, 0x00FF8000, nullptr, 0, 1, -1);
    CHECK(std::equal(image->GetBits(), image->GetBits() + 120 * 40, again->GetBits()));
    image->DrawText(u"edge", { 110, 35, 400, 400 }, 0xFFFFFF, nullptr, 0, -1, -1);
    image->DrawText(u"edge", { -10, -6, 20, 20 }, 0xFFFFFF, nullptr, 0, -1, -1);
    CHECK((PixelAt(*image, 119, 39) >> 24) == 0x5A);
}

TEST_CASE("Text is upright, and lies where its alignment says")
{
    const auto inkWith = [](int32_t alignment) {
        Image image = MakeImage(200, 100);
        image->DrawText(u"L", { 0, 0, 200, 100 }, 0xFFFFFF, nullptr, alignment, -1, -1);
        return InkOf(*image, 0);
    };
    const OQRect topLeft = inkWith(0);
    CHECK(topLeft.right < 20);
    CHECK(topLeft.bottom < 20);
    const OQRect middle = inkWith(1 | 1 << 2);
    CHECK(std::abs((middle.left + middle.right) / 2 - 100) < 4);
    CHECK(std::abs((middle.top + middle.bottom) / 2 - 50) < 5);
    const OQRect bottomRight = inkWith(2 | 2 << 2);
    CHECK(bottomRight.left > 180);
    CHECK(bottomRight.top > 80);

    Image image = MakeImage(20, 20);
    image->DrawText(u"L", { 0, 0, 20, 20 }, 0xFFFFFF, nullptr, 0, -1, -1);
    const OQRect ink = InkOf(*image, 0);
    int upper = 0;
    int lower = 0;
    for (int32_t x = ink.left; x < ink.right; ++x) {
        upper += PixelAt(*image, x, ink.top) > 0x400000;
        lower += PixelAt(*image, x, ink.bottom - 1) > 0x400000;
    }
    CHECK(lower > upper);
}

TEST_CASE("Strange texts and boxes draw nothing outside and do no harm")
{
    Image image = MakeImage(64, 48);
    const OQRect boxes[] = { { 0, 0, 0, 0 }, { 9, 9, 1, 1 }, { kLeast, kLeast, kMost, kMost },
        { kMost - 1, 0, kMost, 48 }, { 0, 0, 1, 1 }, { kLeast, 0, 64, 48 } };
    const std::u16string long_text(40000, u'W');
    const OQChar lone[] = { 0xD800, u'a', 0xDC00, 0xD83C, 0xDFB5, 0xD800, 0 };
    for (const OQRect& box : boxes)
        for (const OQChar* text : { u"", u"a\r\nb\tc\u202E\u0007", u"\u05E9\u05DC\u05D5\u05DD",
                 static_cast<const OQChar*>(lone), long_text.c_str() })
            for (const int32_t alignment : { 0, 2, 5, 15, -1, kLeast })
                image->DrawText(text, box, 0xFFFFFF, nullptr, alignment, -1, -1);
    image->DrawText(nullptr, { 0, 0, 9, 9 }, 0, nullptr, 0, 0, 0);
    CHECK(InkOf(*image, 0) != OQRect {});
}

TEST_CASE("A word without an end in a box without a width takes no time to speak of")
{
    Image image = MakeImage(64, 48);
    std::u16string endless(1 << 20, u'W');
    std::u16string words(1 << 20, u'W');
    for (size_t i = 250; i < words.size(); i += 250)
        words[i] = u' ';
    const auto start = std::chrono::steady_clock::now();
    for (const std::u16string* text : { &endless, &words })
        image->DrawText(text->c_str(), { 0, 0, 1, 48 }, 0xFFFFFF, nullptr, 0, -1, -1);
    CHECK(std::chrono::steady_clock::now() - start < std::chrono::seconds(5)); // 0.6 s measured
}

TEST_CASE("Threads that own an image each may draw text at once")
{
    Image alone = MakeImage(100, 20);
    alone->DrawText(u"fps: 59.9", { 1, 1, 98, 18 }, 0xFFFFFF, nullptr, 0, 1, -1);
    std::vector<Image> images;
    for (int k = 0; k < 4; ++k)
        images.push_back(MakeImage(100, 20));
    {
        std::vector<std::jthread> threads;
        for (Image& image : images)
            threads.emplace_back([&image] {
                for (int k = 0; k < 50; ++k) {
                    image->Clear(0, 0);
                    image->DrawText(k < 49 ? u"other" : u"fps: 59.9", { 1, 1, 98, 18 }, 0xFFFFFF,
                        nullptr, 0, 1, -1);
                }
            });
    }
    for (const Image& image : images)
        CHECK(std::equal(alone->GetBits(), alone->GetBits() + 2000, image->GetBits()));
}

TEST_CASE("A PNG reads back as the picture, with its alpha or without")
{
    const TestFolder folder;
    Image image = MakeImage(3, 2);
    for (int i = 0; i < 6; ++i)
        image->GetBits()[i] = 0x10203040u * static_cast<uint32_t>(i + 1);
    for (const bool opaque : { false, true }) {
        const std::u16string path = NameIn(folder, opaque ? "b\u00E9.png" : "a.png");
        REQUIRE(image->SavePng(path.c_str(), opaque));
        GdkPixbuf* read = gdk_pixbuf_new_from_file(fs::path(path).c_str(), nullptr);
        REQUIRE(read);
        CHECK(gdk_pixbuf_get_width(read) == 3);
        CHECK(gdk_pixbuf_get_height(read) == 2);
        REQUIRE(gdk_pixbuf_get_n_channels(read) == (opaque ? 3 : 4));
        for (int32_t y = 0; y < 2; ++y)
            for (int32_t x = 0; x < 3; ++x) {
                const uint8_t* bytes = gdk_pixbuf_read_pixels(read)
                    + y * gdk_pixbuf_get_rowstride(read) + x * (opaque ? 3 : 4);
                const uint32_t pixel = PixelAt(*image, x, y);
                CHECK(bytes[0] == (pixel >> 16 & 0xFF));
                CHECK(bytes[1] == (pixel >> 8 & 0xFF));
                CHECK(bytes[2] == (pixel & 0xFF));
                if (!opaque)
                    CHECK(bytes[3] == (pixel >> 24));
            }
        g_object_unref(read);
    }
    CHECK(folder.Count() == 2);
}

TEST_CASE("A PNG that can't be written leaves nothing behind and nothing changed")
{
    const TestFolder folder;
    Image image = MakeImage(3, 2);
    fs::create_directory(folder / "taken.png");
    fs::create_symlink("/dev/full", folder / "device.png");
    CHECK_FALSE(image->SavePng(NameIn(folder, "no folder/a.png").c_str(), true));
    CHECK_FALSE(image->SavePng(NameIn(folder, "taken.png").c_str(), true));
    CHECK_FALSE(image->SavePng(NameIn(folder, "device.png").c_str(), true));
    CHECK_FALSE(image->SavePng(u"", true));
    CHECK_FALSE(image->SavePng(nullptr, true));
    CHECK(folder.Count() == 2);
    CHECK(fs::is_symlink(folder / "device.png"));

    // An existing picture is replaced as a whole.
    REQUIRE(image->SavePng(NameIn(folder, "a.png").c_str(), true));
    const auto before = fs::file_size(folder / "a.png");
    image->Clear(0x123456, 255);
    REQUIRE(image->SavePng(NameIn(folder, "a.png").c_str(), false));
    CHECK(fs::file_size(folder / "a.png") != before);
    CHECK(folder.Count() == 3);
}
