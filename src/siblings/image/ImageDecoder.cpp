#include "siblings/image/ImageDecoder.h"

#include "kernels/PixelsFromBytes.h"

#include <cstdlib>

namespace pxvis::image {

namespace {

// The name of the decoder for a file that starts so; null for all others.
const char* FormatOf(std::string_view bytes)
{
    using namespace std::string_view_literals;

    constexpr struct
    {
        std::string_view signature;
        const char* name;
    } formats[] = {
        { "\x89PNG\r\n\x1A\n"sv, "png" },
        { "\xFF\xD8\xFF"sv, "jpeg" },
        { "GIF87a"sv, "gif" },
        { "GIF89a"sv, "gif" },
        { "BM"sv, "bmp" },
        { "II*\0"sv, "tiff" },
        { "MM\0*"sv, "tiff" },
        { "\0\0\1\0"sv, "ico" },
    };

    for (const auto& format : formats)
        if (bytes.starts_with(format.signature))
            return format.name;
    if (bytes.starts_with("RIFF") && bytes.substr(4).substr(4).starts_with("WEBP"))
        return "webp";
    return nullptr;
}

struct ReleaseLoader
{
    void operator()(GdkPixbufLoader* loader) const { g_object_unref(loader); }
};

// The decoder tells the size before it takes memory, and gives up when asked for no pixels.
void OnSizeKnown(GdkPixbufLoader* loader, gint width, gint height, gpointer)
{
    if (!IsAllowedSize(width, height))
        gdk_pixbuf_loader_set_size(loader, 0, 0);
}

}

Pixbuf Decode(std::string_view bytes, int32_t)
{
    const char* format = FormatOf(bytes);
    if (!format)
        return nullptr;
    const std::unique_ptr<GdkPixbufLoader, ReleaseLoader> loader(
        gdk_pixbuf_loader_new_with_type(format, nullptr));
    if (!loader)
        return nullptr;
    g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(&OnSizeKnown), nullptr);
    bool good = gdk_pixbuf_loader_write(
        loader.get(), reinterpret_cast<const guchar*>(bytes.data()), bytes.size(), nullptr);
    good = gdk_pixbuf_loader_close(loader.get(), nullptr) && good;
    GdkPixbuf* pixbuf = good ? gdk_pixbuf_loader_get_pixbuf(loader.get()) : nullptr;
    if (!pixbuf || !IsAllowedSize(gdk_pixbuf_get_width(pixbuf), gdk_pixbuf_get_height(pixbuf))
        || gdk_pixbuf_get_bits_per_sample(pixbuf) != 8
        || gdk_pixbuf_get_n_channels(pixbuf) != (gdk_pixbuf_get_has_alpha(pixbuf) ? 4 : 3))
        return nullptr;
    return Pixbuf(GDK_PIXBUF(g_object_ref(pixbuf)));
}

// The number that Exif gives the picture's orientation: 1 is upright, 5 to 8 lie on their side.
static int Orientation(GdkPixbuf* pixbuf)
{
    const gchar* text = gdk_pixbuf_get_option(pixbuf, "orientation");
    return text && text[0] >= '1' && text[0] <= '8' && !text[1] ? text[0] - '0' : 1;
}

UprightSize SizeOfUpright(GdkPixbuf* pixbuf)
{
    const int32_t width = gdk_pixbuf_get_width(pixbuf);
    const int32_t height = gdk_pixbuf_get_height(pixbuf);
    return Orientation(pixbuf) < 5 ? UprightSize { width, height } : UprightSize { height, width };
}

void CopyUpright(const Pixels& target, GdkPixbuf* pixbuf)
{
    // Where the stored picture's first pixel goes, and from there the next one of its row and the
    // first one of its next row.
    const int32_t right = target.width - 1;
    const int32_t bottom = target.height - 1;
    const ptrdiff_t down = target.stride;

    const struct
    {
        uint32_t* first;
        ptrdiff_t step;
        ptrdiff_t rowStep;
    } ways[] = {
        { target.At(0, 0), 1, down },
        { target.At(right, 0), -1, down },
        { target.At(right, bottom), -1, -down },
        { target.At(0, bottom), 1, -down },
        { target.At(0, 0), down, 1 },
        { target.At(right, 0), down, -1 },
        { target.At(right, bottom), -down, -1 },
        { target.At(0, bottom), -down, 1 },
    };

    const auto& way = ways[Orientation(pixbuf) - 1];

    const guint8* bytes = gdk_pixbuf_read_pixels(pixbuf);
    const int32_t rowBytes = gdk_pixbuf_get_rowstride(pixbuf);
    const int32_t height = gdk_pixbuf_get_height(pixbuf);
    for (int32_t y = 0; y < height; ++y)
        kernels::PixelsFromBytes(way.first + y * way.rowStep, way.step,
            bytes + ptrdiff_t { y } * rowBytes, gdk_pixbuf_get_n_channels(pixbuf),
            gdk_pixbuf_get_width(pixbuf));
}

}
