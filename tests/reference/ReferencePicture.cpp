#include "ReferencePicture.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>
#include <cstdlib>

bool ReferencePicture::Load(const std::string& path)
{
    *this = {};
    GdkPixbuf* file = gdk_pixbuf_new_from_file(path.c_str(), nullptr);
    if (!file)
        return false;
    const bool usable
        = gdk_pixbuf_get_n_channels(file) == 3 && gdk_pixbuf_get_height(file) % 2 == 0;
    if (usable) {
        width = gdk_pixbuf_get_width(file);
        height = gdk_pixbuf_get_height(file) / 2;
        const guchar* bytes = gdk_pixbuf_read_pixels(file);
        const int32_t pitch = gdk_pixbuf_get_rowstride(file);
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) {
                const guchar* color = bytes + y * pitch + x * 3;
                const uint32_t alpha = color[height * pitch];
                pixels.push_back(alpha << 24 | static_cast<uint32_t>(color[0]) << 16
                    | static_cast<uint32_t>(color[1]) << 8 | color[2]);
            }
        }
    }
    g_object_unref(file);
    return usable;
}

bool ReferencePicture::Save(const std::string& path) const
{
    GdkPixbuf* file = gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, width, height * 2);
    guchar* bytes = gdk_pixbuf_get_pixels(file);
    const int32_t pitch = gdk_pixbuf_get_rowstride(file);
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            const uint32_t pixel = pixels[static_cast<size_t>(y * width + x)];
            guchar* color = bytes + y * pitch + x * 3;
            for (int32_t i = 0; i < 3; ++i) {
                color[i] = static_cast<guchar>(pixel >> (16 - 8 * i));
                color[height * pitch + i] = static_cast<guchar>(pixel >> 24);
            }
        }
    }
    const bool saved = gdk_pixbuf_save(file, path.c_str(), "png", nullptr, nullptr);
    g_object_unref(file);
    return saved;
}

ReferencePicture ReferencePicture::DifferenceFrom(const ReferencePicture& other) const
{
    ReferencePicture difference { width, height, {} };
    for (size_t i = 0; i < pixels.size(); ++i) {
        uint32_t pixel = 0;
        for (int32_t shift = 0; shift < 32; shift += 8) {
            const int32_t byte = static_cast<int32_t>(pixels[i] >> shift & 0xFF);
            const int32_t otherByte = static_cast<int32_t>(other.pixels[i] >> shift & 0xFF);
            if (byte != otherByte)
                pixel |= static_cast<uint32_t>(std::max(std::abs(byte - otherByte), 96)) << shift;
        }
        difference.pixels.push_back(pixel);
    }
    return difference;
}
