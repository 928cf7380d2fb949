#include "siblings/image/ImageSaving.h"

#include "os/PartFile.h"
#include "siblings/image/ImageDecoder.h"

#include <algorithm>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <sys/stat.h>
#include <vector>

namespace pxvis::image {

namespace {

// A device or a pipe would be replaced by the new file instead of taking it.
bool IsFreeOrFile(const std::string& path)
{
    struct stat status
    {
    };

    return stat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode);
}

// Top row first, red, green, blue and, with `channels` 4, alpha.
std::vector<uint8_t> ByteRows(const Pixels& pixels, int channels)
{
    std::vector<uint8_t> bytes(static_cast<size_t>(pixels.width)
        * static_cast<size_t>(pixels.height) * static_cast<size_t>(channels));
    uint8_t* out = bytes.data();
    for (int32_t y = 0; y < pixels.height; ++y) {
        const uint32_t* row = pixels.At(0, y);
        for (int32_t x = 0; x < pixels.width; ++x) {
            *out++ = static_cast<uint8_t>(row[x] >> 16);
            *out++ = static_cast<uint8_t>(row[x] >> 8);
            *out++ = static_cast<uint8_t>(row[x]);
            if (channels == 4)
                *out++ = static_cast<uint8_t>(row[x] >> 24);
        }
    }
    return bytes;
}

gboolean WritePart(const gchar* bytes, gsize count, GError** error, gpointer file)
{
    if (static_cast<os::PartFile*>(file)->Write({ bytes, count }))
        return TRUE;
    g_set_error_literal(
        error, GDK_PIXBUF_ERROR, GDK_PIXBUF_ERROR_FAILED, "The file can't be written");
    return FALSE;
}

// `option` and `value` are the encoder's, both null for none.
bool Save(const Pixels& pixels, const std::string& path, int channels, const char* encoder,
    const char* option, const char* value)
{
    if (path.empty() || !IsFreeOrFile(path))
        return false;
    os::PartFile file(path);
    if (!file.IsOpen())
        return false;

    const std::vector<uint8_t> bytes = ByteRows(pixels, channels);
    const Pixbuf pixbuf(gdk_pixbuf_new_from_data(bytes.data(), GDK_COLORSPACE_RGB, channels == 4, 8,
        pixels.width, pixels.height, pixels.width * channels, nullptr, nullptr));
    GError* error = nullptr;
    const bool written = gdk_pixbuf_save_to_callback(
        pixbuf.get(), &WritePart, &file, encoder, &error, option, value, nullptr);
    g_clear_error(&error);
    return written && file.KeepAs(path);
}

}

bool SavePng(const Pixels& pixels, const std::string& path, bool opaque)
{
    return Save(pixels, path, opaque ? 3 : 4, "png", nullptr, nullptr);
}

bool SaveJpeg(const Pixels& pixels, const std::string& path, int32_t quality)
{
    const std::string value = std::to_string(std::clamp(quality, 1, 100));
    return Save(pixels, path, 3, "jpeg", "quality", value.c_str());
}

}
