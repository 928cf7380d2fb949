#include "siblings/image/ImageTesting.h"

#include <pxvis/IOQVisualizationHost.h>

#include <fcntl.h>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

using namespace std::string_literals;

namespace {

bool LoadBytes(IOQImage& image, std::string_view bytes, int32_t width = 0, int32_t height = 0)
{
    const HostPicture picture { reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size() };
    return image.LoadFromHost(&picture, width, height);
}

bool LoadFile(IOQImage& image, const std::u16string& path, int32_t width = 0, int32_t height = 0)
{
    return image.Load(path.c_str(), width, height, 0, -1, 1, 0, 0, 0, 0);
}

std::string Little(uint64_t value, int bytes)
{
    std::string text;
    for (int i = 0; i < bytes; ++i)
        text.push_back(static_cast<char>(value >> 8 * i & 0xFF));
    return text;
}

std::string Big(uint64_t value, int bytes)
{
    const std::string text = Little(value, bytes);
    return std::string(text.rbegin(), text.rend());
}

bool IsKnown(const std::string& decoder)
{
    GdkPixbufLoader* loader = gdk_pixbuf_loader_new_with_type(decoder.c_str(), nullptr);
    if (loader) {
        gdk_pixbuf_loader_close(loader, nullptr);
        g_object_unref(loader);
    }
    return loader != nullptr;
}

// A file as the system's encoder makes it, 48 x 32, its left half blue over red, its right half
// green over white; empty if the system has no such encoder.
std::string Encoded(const char* encoder)
{
    GdkPixbuf* pixbuf = gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, 8, 48, 32);
    const guint32 colors[] = { 0x0000FFFF, 0x00FF00FF, 0xFF0000FF, 0xFFFFFFFF };
    for (int i = 0; i < 4; ++i) {
        GdkPixbuf* quarter = gdk_pixbuf_new_subpixbuf(pixbuf, i % 2 * 24, i / 2 * 16, 24, 16);
        gdk_pixbuf_fill(quarter, colors[i]);
        g_object_unref(quarter);
    }
    gchar* buffer = nullptr;
    gsize size = 0;
    std::string bytes;
    if (gdk_pixbuf_save_to_buffer(pixbuf, &buffer, &size, encoder, nullptr, nullptr))
        bytes.assign(buffer, size);
    g_free(buffer);
    g_object_unref(pixbuf);
    return bytes;
}

bool IsNear(uint32_t pixel, uint32_t expected)
{
    for (int shift = 0; shift < 32; shift += 8)
        if (std::abs(static_cast<int>(pixel >> shift & 0xFF)
                - static_cast<int>(expected >> shift & 0xFF))
            > 24)
            return false;
    return true;
}

// The four corners of a picture in reading order: b, g, r, w, or ? for another colour.
std::string Corners(IOQImage& image)
{
    const OQSize size = image.GetSize();
    std::string corners;
    for (const int32_t y : { 2, size.cy - 3 })
        for (const int32_t x : { 2, size.cx - 3 }) {
            const uint32_t pixel = PixelAt(image, x, y);
            corners += IsNear(pixel, 0xFF0000FF) ? 'b'
                : IsNear(pixel, 0xFF00FF00)      ? 'g'
                : IsNear(pixel, 0xFFFF0000)      ? 'r'
                : IsNear(pixel, 0xFFFFFFFF)      ? 'w'
                                                 : '?';
        }
    return corners;
}

// Two by two: blue and green over red and white.
std::string SmallGif(const std::string& frames)
{
    return "GIF89a" + Little(2, 2) + Little(2, 2) + "\x81\0\0"s
        + "\0\0\xFF\0\xFF\0\xFF\0\0\xFF\xFF\xFF"s + frames + ";";
}

std::string GifFrame(uint32_t width, uint32_t height, uint32_t left = 0)
{
    // Codes of three bits: clear, 0, 1, 2, then of four bits, 3 and the end.
    return "!\xF9\x04\x0C\1\0\0\0,"s + Little(left, 4) + Little(width, 2) + Little(height, 2)
        + "\0\2\3\x44\x34\5\0"s;
}

// What the commands print goes to the terminal; a picture must not write there.
class StandardError
{
public:
    StandardError()
        : m_saved(dup(2))
        , m_file(std::tmpfile())
    {
        dup2(fileno(m_file), 2);
    }

    ~StandardError()
    {
        dup2(m_saved, 2);
        close(m_saved);
        std::fclose(m_file);
    }

    bool IsSilent() const
    {
        struct stat status = {};
        return fstat(fileno(m_file), &status) == 0 && status.st_size == 0;
    }

private:
    int m_saved;
    std::FILE* m_file;
};

}

TEST_CASE("A saved picture is loaded again with every bit, from a file and from a host")
{
    const TestFolder folder;
    Image image = MakeImage(5, 3);
    for (uint32_t i = 0; i < 15; ++i)
        image->GetBits()[i] = i * 0x11223345u;
    REQUIRE(image->SavePng(NameIn(folder, "a.png").c_str(), false));

    Image loaded(OQCreateImage());
    CHECK_FALSE(loaded->IsValid());
    REQUIRE(LoadFile(*loaded, NameIn(folder, "a.png")));
    CHECK(loaded->IsValid());
    CHECK(loaded->GetSize() == OQSize { 5, 3 });
    CHECK(std::equal(image->GetBits(), image->GetBits() + 15, loaded->GetBits()));

    fs::create_directory(folder / "b");
    fs::copy(folder / "a.png", folder / "b/c.png");
    const std::u16string other = NameIn(folder, "b") + u"\\c.png";
    REQUIRE(LoadFile(*loaded, other, 10, -3));
    CHECK(loaded->GetSize() == OQSize { 10, 3 });
    REQUIRE(LoadBytes(*loaded, folder.Read("a.png"), 0, 7));
    CHECK(loaded->GetSize() == OQSize { 5, 7 });

    for (const auto& [width, height] : { std::pair { 16385, 1 }, { 1, -16385 }, { 16384, 16384 },
             { std::numeric_limits<int>::min(), 0 } }) {
        CHECK_FALSE(LoadFile(*loaded, NameIn(folder, "a.png"), width, height));
        CHECK_FALSE(loaded->IsValid());
        CHECK(loaded->GetBits() == nullptr);
    }
}

TEST_CASE("Pictures of every kind come out upright and with red where red was")
{
    Image image(OQCreateImage());
    for (const char* encoder : { "png", "jpeg", "bmp", "tiff", "ico", "webp" }) {
        const std::string bytes = Encoded(encoder);
        if (bytes.empty()) {
            CHECK_MESSAGE(encoder == "webp"s, encoder); // the only one that may be missing
            continue;
        }
        INFO(encoder);
        REQUIRE(LoadBytes(*image, bytes));
        CHECK(image->GetSize() == OQSize { 48, 32 });
        CHECK(Corners(*image) == "bgrw");
        REQUIRE(LoadBytes(*image, bytes, 12, 12));
        CHECK(Corners(*image) == "bgrw");
        REQUIRE(LoadBytes(*image, bytes, 100, 0));
        CHECK(image->GetSize() == OQSize { 100, 32 });
        CHECK(Corners(*image) == "bgrw");
    }
    REQUIRE(LoadBytes(*image, SmallGif(GifFrame(2, 2))));
    CHECK(PixelAt(*image, 0, 0) == 0xFF0000FF);
    CHECK(PixelAt(*image, 1, 0) == 0xFF00FF00);
    CHECK(PixelAt(*image, 0, 1) == 0xFFFF0000);
    CHECK(PixelAt(*image, 1, 1) == 0xFFFFFFFF);
}

TEST_CASE("The picture that stands in where none is found can be loaded")
{
    const fs::path path = PXVIS_SOURCE_DIR "/data/Visualizations/Vis Studio/Images/Default.gif";
    CHECK(fs::file_size(path) <= 65536);
    Image image(OQCreateImage());
    REQUIRE(LoadFile(*image, path.u16string()));
    CHECK(image->GetSize() == OQSize { 512, 512 });
    CHECK(PixelAt(*image, 256, 256) == 0xFFFFFFFF);
    CHECK(PixelAt(*image, 0, 0) == 0xFF000000);
}

TEST_CASE("A picture that lies on its side is turned, at its own size and at another")
{
    const std::string jpeg = Encoded("jpeg");
    const char* upright[] = { "bgrw", "gbwr", "wrgb", "rwbg", "brgw", "rbwg", "wgrb", "gwbr" };
    for (uint32_t orientation = 1; orientation <= 8; ++orientation) {
        const std::string exif = "Exif\0\0II*\0"s + Little(8, 4) + Little(1, 2) + Little(0x112, 2)
            + Little(3, 2) + Little(1, 4) + Little(orientation, 4) + Little(0, 4);
        const std::string turned
            = jpeg.substr(0, 2) + "\xFF\xE1" + Big(exif.size() + 2, 2) + exif + jpeg.substr(2);
        Image image(OQCreateImage());
        REQUIRE(LoadBytes(*image, turned));
        CHECK(image->GetSize() == (orientation < 5 ? OQSize { 48, 32 } : OQSize { 32, 48 }));
        CHECK(Corners(*image) == upright[orientation - 1]);
        REQUIRE(LoadBytes(*image, turned, 10, 8));
        CHECK(image->GetSize() == OQSize { 10, 8 });
        CHECK(Corners(*image) == upright[orientation - 1]);
    }
}

TEST_CASE("Of an animation the first frame is loaded, however many follow")
{
    std::string frames = GifFrame(2, 2);
    while (frames.size() < 2'000'000)
        frames += frames;
    Image image(OQCreateImage());
    REQUIRE(LoadBytes(*image, SmallGif(frames)));
    CHECK(PixelAt(*image, 1, 1) == 0xFFFFFFFF);
    // What follows needn't even be whole.
    CHECK(LoadBytes(*image, SmallGif(frames).substr(0, frames.size() / 2)));

    const std::string still = Encoded("webp");
    if (still.empty())
        return;
    const std::string chunks = still.substr(still.compare(12, 4, "VP8X") == 0 ? 30 : 12);
    const std::string frame = Little(0, 6) + Little(47, 3) + Little(31, 3) + Little(16, 4) + chunks;
    const std::string body = "WEBPVP8X" + Little(10, 4) + Little(0x12, 4) + Little(47, 3)
        + Little(31, 3) + "ANIM" + Little(6, 4) + Little(0, 6) + "ANMF" + Little(frame.size(), 4)
        + frame + "ANMF";
    REQUIRE(LoadBytes(*image, "RIFF" + Little(body.size(), 4) + body));
    CHECK(Corners(*image) == "bgrw");
}

TEST_CASE("Files that aren't files, and kinds that aren't plain pictures, are refused at once")
{
    const TestFolder folder;
    Image image(OQCreateImage());
    fs::create_directory(folder / "folder");
    fs::create_directory_symlink(folder / "folder", folder / "link");
    fs::create_symlink("/dev/zero", folder / "zero");
    REQUIRE(mkfifo((folder / "pipe").c_str(), 0600) == 0);
    folder.Write("empty", "");
    folder.Write("large", "");
    fs::resize_file(folder / "large", (64u << 20) + 1);
    folder.Write("locked", Encoded("png"));
    fs::permissions(folder / "locked", fs::perms::none);
    for (const char* name : { "folder", "link", "zero", "pipe", "empty", "large", "missing" })
        CHECK_FALSE(LoadFile(*image, NameIn(folder, name)));
    CHECK(LoadFile(*image, NameIn(folder, "locked"))
        == (access((folder / "locked").c_str(), R_OK) == 0));
    CHECK_FALSE(LoadFile(*image, u""));
    CHECK_FALSE(LoadFile(*image, u"http://example.org/a.png"));
    CHECK_FALSE(image->Load(nullptr, 0, 0, 0, -1, 1, 0, 0, 0, 0));

    CHECK_FALSE(image->LoadFromHost(nullptr, 0, 0));
    const uint8_t byte = 0;
    for (const HostPicture& picture : { HostPicture { nullptr, 0 }, HostPicture { nullptr, 9 },
             HostPicture { &byte, 0 }, HostPicture { &byte, (64u << 20) + 1 } })
        CHECK_FALSE(image->LoadFromHost(&picture, 0, 0));

    for (const char* text :
        { "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"9\" height=\"9\"/>", "<?xml?><svg/>",
            "/* XPM */\nstatic char*x[]={\"1 1 1 1\",\"a c red\",\"a\"};", "P6 1 1 255 abc",
            "#define x_width 1\n#define x_height 1\nstatic char x_bits[]={1};", "text" })
        CHECK_FALSE(LoadBytes(*image, text));
}

TEST_CASE("Damaged and boastful pictures are refused at once and in silence")
{
    const StandardError error;
    Image image(OQCreateImage());
    for (const char* encoder : { "png", "jpeg", "bmp", "tiff", "ico", "webp" }) {
        const std::string bytes = Encoded(encoder);
        INFO(encoder);
        for (size_t size = 0; size < bytes.size(); size += std::max<size_t>(bytes.size() / 97, 1))
            CHECK_FALSE(LoadBytes(*image, std::string_view(bytes).substr(0, size)));
        // Whatever comes of these, it comes to an end.
        for (size_t at = 0; at < std::min<size_t>(bytes.size(), 400); ++at) {
            std::string damaged = bytes;
            damaged[at] = static_cast<char>(~damaged[at]);
            LoadBytes(*image, damaged);
        }
    }

    const std::string gif = SmallGif(GifFrame(2, 2));
    for (size_t size = 0; size + 1 < gif.size(); ++size)
        CHECK_FALSE(LoadBytes(*image, std::string_view(gif).substr(0, size)));
    CHECK_FALSE(LoadBytes(*image, SmallGif(GifFrame(65535, 65535))));
    CHECK_FALSE(LoadBytes(*image, SmallGif(GifFrame(0, 2))));
    CHECK(LoadBytes(*image, SmallGif(GifFrame(2, 2, 3)))); // beyond the picture, which grows
    CHECK(image->GetSize() == OQSize { 5, 2 });

    const struct
    {
        const char* encoder;
        size_t at; // of the width
        std::string sizes;
    } boasts[] = {
        { "png", 16, Big(16384, 4) + Big(16384, 4) },
        { "png", 16, Big(0x7FFFFFFF, 4) + Big(0x7FFFFFFF, 4) },
        { "bmp", 18, Little(16384, 4) + Little(16384, 4) },
        { "bmp", 18, Little(0x7FFFFFFF, 4) + Little(0x80000000, 4) },
        { "bmp", 18, Little(8192, 4) + Little(8192, 4) }, // allowed, but the pixels aren't there
        { "ico", 22 + 4, Little(16384, 4) + Little(32768, 4) },
    };

    for (const auto& boast : boasts)
        CHECK_FALSE(LoadBytes(
            *image, Encoded(boast.encoder).replace(boast.at, boast.sizes.size(), boast.sizes)));
    std::string jpeg = Encoded("jpeg");
    jpeg.replace(jpeg.find("\xFF\xC0") + 5, 4, "\xFF\xFF\xFF\xFF");
    CHECK_FALSE(LoadBytes(*image, jpeg));
    const std::string tiff = "II*\0"s + Little(8, 4) + Little(2, 2) + Little(256, 2) + Little(4, 2)
        + Little(1, 4) + Little(0x7FFFFFFF, 4) + Little(257, 2) + Little(4, 2) + Little(1, 4)
        + Little(0x7FFFFFFF, 4) + Little(0, 4);
    CHECK_FALSE(LoadBytes(*image, tiff));
    if (IsKnown("webp")) {
        const std::string webp
            = "WEBPVP8L" + Little(20, 4) + "\x2F" + Little(0x0FFFFFFF, 4) + std::string(15, '\0');
        CHECK_FALSE(LoadBytes(*image, "RIFF" + Little(webp.size(), 4) + webp));
    }
    CHECK(error.IsSilent());
}

TEST_CASE("What a PNG holds beside its picture is not unpacked")
{
    std::string png = Encoded("png");
    const size_t afterHeader = 8 + 12 + 13;
    // Damaged on purpose: whoever looks into it refuses the picture.
    const std::string text = Big(6, 4) + "zTXtk\0\0abc"s + Big(0, 4);
    png.insert(afterHeader, text);
    Image image(OQCreateImage());
    REQUIRE(LoadBytes(*image, png));
    CHECK(Corners(*image) == "bgrw");
}

TEST_CASE("A PNG with fewer rows than it promises is refused")
{
    std::string png = Encoded("png");
    constexpr size_t header = 8 + 4; // its name and fields, which the checksum is of
    png.replace(header + 8, 4, Big(48, 4));
    uint32_t checksum = ~0u;
    for (const char byte : png.substr(header, 17)) {
        checksum ^= static_cast<uint8_t>(byte);
        for (int bit = 0; bit < 8; ++bit)
            checksum = checksum >> 1 ^ (checksum & 1 ? 0xEDB88320 : 0);
    }
    png.replace(header + 17, 4, Big(~checksum, 4));
    CHECK_FALSE(LoadBytes(*Image(OQCreateImage()), png));
}

TEST_CASE("The largest picture of an icon may be a PNG")
{
    const std::string small = Encoded("ico").substr(22);
    const std::string png = Encoded("png");
    const std::string icon = Little(0x10000, 4) + Little(2, 2) + "\x30\x20\0\0\1\0\x20\0"s
        + Little(small.size(), 4) + Little(38, 4) + "\0\0\0\0\1\0\x20\0"s + Little(png.size(), 4)
        + Little(38 + small.size(), 4) + small + png;
    Image image(OQCreateImage());
    REQUIRE(LoadBytes(*image, icon));
    CHECK(Corners(*image) == "bgrw");
    CHECK_FALSE(LoadBytes(*image, std::string_view(icon).substr(0, icon.size() - 1)));
}

TEST_CASE("A GIF of very many blocks is loaded as fast as one of few")
{
    std::string blocks;
    for (int i = 0; i < 1'000'000; ++i)
        blocks += "!\xFE\1a\0"s;
    std::string frame = GifFrame(2, 2);
    CHECK(LoadBytes(*Image(OQCreateImage()), SmallGif(blocks + frame)));
    frame.pop_back();
    for (int i = 0; i < 1'000'000; ++i)
        frame += "\1\0"s;
    CHECK(LoadBytes(*Image(OQCreateImage()), SmallGif(frame + '\0')));
}

TEST_CASE("A JPEG is refused when its scans go over too many pixels in all")
{
    const std::string small = Encoded("jpeg");
    const std::string large
        = std::string(small).replace(small.find("\xFF\xC0") + 5, 4, Big(8192, 2) + Big(8192, 2));
    const std::string scan = small.substr(small.find("\xFF\xDA"));
    std::string scans;
    for (int i = 0; i < 20; ++i)
        scans += scan;
    Image image(OQCreateImage());
    CHECK(LoadBytes(*image, small + scans));
    CHECK(LoadBytes(*image, large, 8, 8));
    CHECK_FALSE(LoadBytes(*image, large + scans, 8, 8));
}

TEST_CASE("A JPEG is written whole or not at all, and its quality is brought into range")
{
    const TestFolder folder;
    Image image = MakeImage(64, 64);
    for (int32_t i = 0; i < 64 * 64; ++i)
        image->GetBits()[i] = static_cast<uint32_t>(i) * 2654435761u;
    const auto sizeAt = [&](int32_t quality) {
        REQUIRE(image->SaveJpeg(NameIn(folder, "a.jpg").c_str(), quality, -1));
        return fs::file_size(folder / "a.jpg");
    };
    CHECK(sizeAt(10) < sizeAt(90));
    CHECK(sizeAt(-5) == sizeAt(1));
    CHECK(sizeAt(1000) == sizeAt(100));

    image->Clear(0x0000FF, 0); // alpha is left out, it doesn't make black
    REQUIRE(image->SaveJpeg(NameIn(folder, "a.jpg").c_str(), 90, -1));
    Image loaded(OQCreateImage());
    REQUIRE(LoadFile(*loaded, NameIn(folder, "a.jpg")));
    CHECK(IsNear(PixelAt(*loaded, 30, 30), 0xFFFF0000));

    fs::create_directory(folder / "folder");
    CHECK_FALSE(image->SaveJpeg(NameIn(folder, "folder").c_str(), 90, -1));
    CHECK_FALSE(image->SaveJpeg(NameIn(folder, "missing/a.jpg").c_str(), 90, -1));
    CHECK_FALSE(image->SaveJpeg(nullptr, 90, -1));
    CHECK_FALSE(Image(OQCreateImage())->SaveJpeg(NameIn(folder, "b.jpg").c_str(), 90, -1));
    CHECK(folder.Count() == 2);
}
