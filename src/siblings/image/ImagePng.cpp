#include "siblings/image/ImagePng.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace pxvis::image {

namespace {

// A new file beside the one it is to become. Goes away with the object unless it has been kept.
class PartFile
{
public:
    explicit PartFile(const std::string& target)
    {
        static std::atomic<uint32_t> counter { 0 };
        const size_t slash = target.rfind('/');
        const std::string folder
            = slash == std::string::npos ? std::string() : target.substr(0, slash + 1);
        do {
            m_path = folder + ".pxvis-" + std::to_string(getpid()) + "-"
                + std::to_string(counter.fetch_add(1)) + ".part";
            m_file = open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        } while (m_file < 0 && errno == EEXIST);
    }

    ~PartFile()
    {
        if (m_file >= 0) {
            close(m_file);
            unlink(m_path.c_str());
        }
    }

    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    bool IsOpen() const { return m_file >= 0; }

    bool Write(const char* bytes, size_t count)
    {
        while (count > 0) {
            const ssize_t written = write(m_file, bytes, count);
            if (written < 0 && errno == EINTR)
                continue;
            if (written <= 0)
                return false;
            bytes += written;
            count -= static_cast<size_t>(written);
        }
        return true;
    }

    bool KeepAs(const std::string& target)
    {
        const bool closed = close(m_file) == 0; // a network file may tell here that it didn't fit
        m_file = -1;
        if (closed && std::rename(m_path.c_str(), target.c_str()) == 0)
            return true;
        unlink(m_path.c_str());
        return false;
    }

private:
    std::string m_path;
    int m_file = -1;
};

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
    if (static_cast<PartFile*>(file)->Write(bytes, count))
        return TRUE;
    g_set_error_literal(
        error, GDK_PIXBUF_ERROR, GDK_PIXBUF_ERROR_FAILED, "The file can't be written");
    return FALSE;
}

}

bool SavePng(const Pixels& pixels, const std::string& path, bool opaque)
{
    if (path.empty() || !IsFreeOrFile(path))
        return false;
    PartFile file(path);
    if (!file.IsOpen())
        return false;

    const int channels = opaque ? 3 : 4;
    const std::vector<uint8_t> bytes = ByteRows(pixels, channels);
    const std::unique_ptr<GdkPixbuf, decltype(&g_object_unref)> pixbuf(
        gdk_pixbuf_new_from_data(bytes.data(), GDK_COLORSPACE_RGB, !opaque, 8, pixels.width,
            pixels.height, pixels.width * channels, nullptr, nullptr),
        &g_object_unref);
    GError* error = nullptr;
    const bool written
        = gdk_pixbuf_save_to_callback(pixbuf.get(), &WritePart, &file, "png", &error, nullptr);
    g_clear_error(&error);
    return written && file.KeepAs(path);
}

}
