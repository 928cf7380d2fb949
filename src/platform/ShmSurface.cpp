#include "platform/ShmSurface.h"

#include "kernels/Stretch.h"
#include "platform/ConnectionBreaker.h"
#include "platform/PictureMemory.h"
#include "platform/PresenterWindow.h"
#include "platform/XcbReply.h"

#include <algorithm>
#include <bit>
#include <sys/socket.h>
#include <vector>
#include <xcb/shm.h>
#include <xcb/xcb.h>

namespace pxvis {

namespace {

constexpr int64_t kPixelBytes = 4;
// Of the stretched picture at a time: a whole window of up to 5120 x 3276.
constexpr int64_t kMostBandBytes = int64_t { 64 } << 20;
constexpr int32_t kPixelsBetweenLooks = 1 << 17; // whether the thread is to end
constexpr int64_t kRequestHeadBytes = 64; // takes less

class ShmSurface final : public PresenterSurface
{
public:
    ShmSurface(std::unique_ptr<PresenterWindow> window, ConnectionBreaker& breaker, bool shared)
        : m_window(std::move(window))
        , m_connection(m_window->GetConnection())
        , m_breaker(breaker)
        , m_isShared(shared)
    {
    }

    bool Open();

    ShowResult Show(const PresenterPicture& picture, int32_t width, int32_t height) override;

    bool IsExposed() override { return m_window->IsExposed(); }

    const char* Method() const override { return m_isShared ? "MIT-SHM" : "XPutImage"; }

private:
    bool CanShare();
    bool MakeWindow();
    bool Reserve(int64_t pixels);
    bool Share(int64_t bytes);
    bool StretchBand(const PresenterPicture& picture, int32_t width, int32_t height, int32_t first,
        int32_t rows);
    ShowResult Put(int32_t width, int32_t top, int32_t rows);

    const std::unique_ptr<PresenterWindow> m_window;
    xcb_connection_t* const m_connection; // the window's
    ConnectionBreaker& m_breaker;
    const bool m_isShared;
    uint8_t m_depth = 0;
    uint32_t m_context = 0; // for graphics, as X calls it
    int64_t m_mostRequestBytes = 0;
    uint8_t m_completion = 0; // the number of the event
    uint32_t m_segment = 0; // of m_memory at the server; 0: none
    PictureMemory m_memory;
    std::vector<uint32_t> m_bits; // instead of it
    uint32_t* m_pixels = nullptr; // of either
};

bool ShmSurface::Open()
{
    const uint8_t ours = std::endian::native == std::endian::little ? XCB_IMAGE_ORDER_LSB_FIRST
                                                                    : XCB_IMAGE_ORDER_MSB_FIRST;
    if (xcb_get_setup(m_connection)->image_byte_order != ours || (m_isShared && !CanShare()))
        return false;
    m_mostRequestBytes
        = int64_t { xcb_get_maximum_request_length(m_connection) } * 4 - kRequestHeadBytes;
    return MakeWindow();
}

// Memory is handed over as a file, which needs a local socket and a server that knows of it; that
// works for programs in a container as well, whose numbered segments are others than the server's.
bool ShmSurface::CanShare()
{
    sockaddr_storage address {};
    socklen_t length = sizeof address;
    if (getsockname(
            xcb_get_file_descriptor(m_connection), reinterpret_cast<sockaddr*>(&address), &length)
            != 0
        || address.ss_family != AF_UNIX)
        return false;
    const xcb_query_extension_reply_t* extension
        = xcb_get_extension_data(m_connection, &xcb_shm_id);
    if (!extension || !extension->present)
        return false;
    m_completion = static_cast<uint8_t>(extension->first_event + XCB_SHM_COMPLETION);
    const XcbReply<xcb_shm_query_version_reply_t> version(
        xcb_shm_query_version_reply(m_connection, xcb_shm_query_version(m_connection), nullptr));
    return version
        && (version->major_version > 1
            || (version->major_version == 1 && version->minor_version >= 2));
}

bool ShmSurface::MakeWindow()
{
    const auto isOfWords = [this](uint8_t depth) {
        auto formats = xcb_setup_pixmap_formats_iterator(xcb_get_setup(m_connection));
        for (; formats.rem > 0; xcb_format_next(&formats))
            if (formats.data->depth == depth && formats.data->bits_per_pixel == 8 * kPixelBytes)
                return true;
        return false;
    };
    for (const PresenterWindow::Visual& visual : m_window->GetVisuals()) {
        if (visual.red != 0xFF0000 || visual.green != 0xFF00 || visual.blue != 0xFF
            || (visual.depth != 24 && visual.depth != 32) || !isOfWords(visual.depth))
            continue;
        if (!m_window->Create(visual))
            return false;
        m_depth = visual.depth;
        m_context = xcb_generate_id(m_connection);
        xcb_create_gc(m_connection, m_context, m_window->GetId(), 0, nullptr);
        return true;
    }
    return false;
}

ShowResult ShmSurface::Show(const PresenterPicture& picture, int32_t width, int32_t height)
{
    ShowResult result = m_window->Cover(width, height);
    const int64_t rowBytes = width * kPixelBytes;
    const int64_t most = m_isShared ? kMostBandBytes : std::min(kMostBandBytes, m_mostRequestBytes);
    const auto band
        = static_cast<int32_t>(std::clamp<int64_t>(most / rowBytes, 1, int64_t { height }));
    if (result == ShowResult::Shown && !Reserve(int64_t { width } * band))
        return ShowResult::MethodFailed;
    for (int32_t y = 0; y < height && result == ShowResult::Shown; y += band) {
        const int32_t rows = std::min(band, height - y);
        result = StretchBand(picture, width, height, y, rows) ? Put(width, y, rows)
                                                              : ShowResult::MethodFailed;
    }
    return result;
}

// False if the thread is to end, which it must notice soon, however large the window is.
bool ShmSurface::StretchBand(
    const PresenterPicture& picture, int32_t width, int32_t height, int32_t first, int32_t rows)
{
    const uint32_t* top = picture.bits + int64_t { picture.height - 1 } * picture.width;
    const int32_t step = std::max(kPixelsBetweenLooks / width, 1);
    for (int32_t y = 0; y < rows; y += step) {
        if (m_breaker.IsBroken())
            return false;
        uint32_t* target = m_pixels + int64_t { width } * y;
        const int32_t count = std::min(step, rows - y);
        kernels::StretchRows(target, width, width, height, top, -ptrdiff_t { picture.width },
            picture.width, picture.height, first + y, first + y + count);
        if (m_depth == 32) // the top byte is opacity then, which the picture's isn't
            std::for_each(target, target + int64_t { width } * count,
                [](uint32_t& pixel) { pixel |= 0xFF000000; });
    }
    return true;
}

bool ShmSurface::Reserve(int64_t pixels)
{
    if (m_isShared)
        return Share(pixels * kPixelBytes);
    if (m_bits.size() < static_cast<size_t>(pixels))
        m_bits.resize(static_cast<size_t>(pixels));
    m_pixels = m_bits.data();
    return true;
}

bool ShmSurface::Share(int64_t bytes)
{
    if (m_memory.GetSize() >= static_cast<size_t>(bytes))
        return true;
    if (m_segment)
        xcb_shm_detach(m_connection, m_segment);
    m_segment = 0;
    if (!m_memory.Create(static_cast<size_t>(bytes)))
        return false;
    m_pixels = static_cast<uint32_t*>(m_memory.GetData());
    const int file = m_memory.Duplicate();
    if (file < 0)
        return false;
    m_segment = xcb_generate_id(m_connection);
    // It closes the file.
    const XcbReply<xcb_generic_error_t> error(xcb_request_check(
        m_connection, xcb_shm_attach_fd_checked(m_connection, m_segment, file, true)));
    return !error && !xcb_connection_has_error(m_connection);
}

// Returns when the server has taken the pixels, so that the next ones may take their place.
ShowResult ShmSurface::Put(int32_t width, int32_t top, int32_t rows)
{
    const auto columns = static_cast<uint16_t>(width);
    const auto lines = static_cast<uint16_t>(rows);
    const auto y = static_cast<int16_t>(top);
    if (m_isShared) {
        xcb_shm_put_image(m_connection, m_window->GetId(), m_context, columns, lines, 0, 0, columns,
            lines, 0, y, m_depth, XCB_IMAGE_FORMAT_Z_PIXMAP, true, m_segment, 0);
        return m_window->WaitFor(m_completion);
    }
    const xcb_void_cookie_t cookie = xcb_put_image_checked(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP,
        m_window->GetId(), m_context, columns, lines, 0, y, 0, m_depth,
        static_cast<uint32_t>(int64_t { width } * rows * kPixelBytes),
        reinterpret_cast<const uint8_t*>(m_pixels));
    const XcbReply<xcb_generic_error_t> error(xcb_request_check(m_connection, cookie));
    const ShowResult result = m_window->Check();
    return error && result == ShowResult::Shown ? ShowResult::MethodFailed : result;
}

}

std::unique_ptr<PresenterSurface> MakeShmSurface(
    uintptr_t window, ConnectionBreaker& breaker, bool shared)
{
    auto presented = PresenterWindow::Connect(window, breaker);
    if (!presented)
        return nullptr;
    auto surface = std::make_unique<ShmSurface>(std::move(presented), breaker, shared);
    return surface->Open() ? std::move(surface) : nullptr;
}

}
