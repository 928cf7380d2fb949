#include "siblings/image/ImageDecoder.h"

#include "kernels/PixelsFromBytes.h"
#include "siblings/image/PictureFile.h"

#include <algorithm>

namespace pxvis::image {

namespace {

struct ReleaseLoader
{
    void operator()(GdkPixbufLoader* loader) const { g_object_unref(loader); }
};

// Pixels that a decoder may go over, all scans of the picture together: a few seconds.
constexpr int64_t kMaxPixelScans = int64_t { 1 } << 28;

struct Demand
{
    int64_t scans;
    int32_t enough;
    bool mayReduce;
    int64_t& pixels;
};

// The decoder tells the size before it takes memory, and gives up when it is asked for no pixels.
void OnSizeKnown(GdkPixbufLoader* loader, gint width, gint height, gpointer data)
{
    const auto& demand = *static_cast<const Demand*>(data);
    if (!IsAllowedSize(width, height)
        || int64_t { width } * height * demand.scans > kMaxPixelScans) {
        gdk_pixbuf_loader_set_size(loader, 0, 0);
        return;
    }
    demand.pixels += int64_t { width } * height * demand.scans;
    if (!demand.mayReduce)
        return;
    // The sizes, rounded up, that the decoder of JPEG knows to make without all of the work.
    for (const int32_t by : { 8, 4, 2 }) {
        const int32_t reducedWidth = (width + by - 1) / by;
        const int32_t reducedHeight = (height + by - 1) / by;
        if (std::min(reducedWidth, reducedHeight) >= demand.enough) {
            gdk_pixbuf_loader_set_size(loader, reducedWidth, reducedHeight);
            return;
        }
    }
}

struct LowestRow
{
    int32_t seen = 0; // one below it
};

void OnPixelsMade(GdkPixbufLoader* loader, gpointer)
{
    gdk_pixbuf_fill(gdk_pixbuf_loader_get_pixbuf(loader), 0);
}

void OnPixelsDecoded(GdkPixbufLoader*, gint, gint y, gint, gint height, gpointer data)
{
    auto& lowest = *static_cast<LowestRow*>(data);
    lowest.seen = std::max(lowest.seen, y + height);
}

bool Write(GdkPixbufLoader* loader, std::string_view bytes, size_t pieceSize)
{
    bool good = true;
    while (good && !bytes.empty()) {
        const std::string_view piece = bytes.substr(0, pieceSize);
        good = gdk_pixbuf_loader_write(
            loader, reinterpret_cast<const guchar*>(piece.data()), piece.size(), nullptr);
        bytes.remove_prefix(piece.size());
    }
    return good;
}

bool IsUsual(GdkPixbuf* pixbuf)
{
    return IsAllowedSize(gdk_pixbuf_get_width(pixbuf), gdk_pixbuf_get_height(pixbuf))
        && gdk_pixbuf_get_bits_per_sample(pixbuf) == 8
        && gdk_pixbuf_get_n_channels(pixbuf) == (gdk_pixbuf_get_has_alpha(pixbuf) ? 4 : 3);
}

// 1 is upright, 5 to 8 lie on their side, numbered as Exif does.
int Orientation(GdkPixbuf* pixbuf)
{
    const gchar* text = gdk_pixbuf_get_option(pixbuf, "orientation");
    return text && text[0] >= '1' && text[0] <= '8' && !text[1] ? text[0] - '0' : 1;
}

}

Pixbuf Decode(std::string_view bytes, int32_t enough, int64_t& pixels)
{
    PictureFile file;
    if (!Examine(bytes, file))
        return nullptr;
    const std::unique_ptr<GdkPixbufLoader, ReleaseLoader> loader(
        gdk_pixbuf_loader_new_with_type(file.decoder, nullptr));
    if (!loader)
        return nullptr;
    const std::string_view decoder = file.decoder;
    Demand demand { file.scans, enough, enough > 0 && decoder == "jpeg", pixels };
    g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(&OnSizeKnown), &demand);
    // A PNG may be whole as a file and hold too few rows: its decoder says nothing and leaves in
    // the others what the memory happened to hold.
    LowestRow lowest;
    if (decoder == "png") {
        g_signal_connect(loader.get(), "area-prepared", G_CALLBACK(&OnPixelsMade), nullptr);
        g_signal_connect(loader.get(), "area-updated", G_CALLBACK(&OnPixelsDecoded), &lowest);
    }
    // That of GIF moves all that it has been given and not yet used with each block, and copies the
    // picture with each piece.
    constexpr size_t mostPieces = 64; // about where both cost the same for large files
    constexpr size_t smallestPiece = 65536; // moved in a millisecond
    const size_t pieceSize = decoder == "gif"
        ? std::max(file.head.size() / mostPieces + 1, smallestPiece)
        : std::string_view::npos;
    bool good = Write(loader.get(), file.head, pieceSize);
    for (size_t i = 0; good && i < file.parts.size(); ++i)
        good = Write(loader.get(), file.parts[i], pieceSize);
    good = gdk_pixbuf_loader_close(loader.get(), nullptr) && good;
    GdkPixbuf* pixbuf = good ? gdk_pixbuf_loader_get_pixbuf(loader.get()) : nullptr;
    if (pixbuf && decoder == "png" && lowest.seen < gdk_pixbuf_get_height(pixbuf))
        return nullptr;
    return Pixbuf(pixbuf && IsUsual(pixbuf) ? GDK_PIXBUF(g_object_ref(pixbuf)) : nullptr);
}

OQSize SizeOfUpright(GdkPixbuf* pixbuf)
{
    const int32_t width = gdk_pixbuf_get_width(pixbuf);
    const int32_t height = gdk_pixbuf_get_height(pixbuf);
    return Orientation(pixbuf) < 5 ? OQSize { width, height } : OQSize { height, width };
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
