#include "ScreenPixels.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <xcb/xcb.h>

namespace {

struct Freed
{
    void operator()(void* reply) const { free(reply); }
};

template <class Reply>
using Owned = std::unique_ptr<Reply, Freed>;

struct Rectangle
{
    xcb_window_t root = 0;
    int16_t x = 0;
    int16_t y = 0;
    uint16_t width = 0;
    uint16_t height = 0;
};

// In the screen's pixels; of no width if there is no such window.
Rectangle RectangleOf(xcb_connection_t* connection, xcb_window_t window)
{
    const Owned<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
    if (!geometry)
        return {};
    const Owned<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(
        connection, xcb_translate_coordinates(connection, window, geometry->root, 0, 0), nullptr));
    if (!place)
        return {};
    return { geometry->root, place->dst_x, place->dst_y, geometry->width, geometry->height };
}

}

ScreenPixels::ScreenPixels(const std::string& display, uint32_t window)
{
    const std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t*)> connection(
        xcb_connect(display.c_str(), nullptr), xcb_disconnect);
    if (xcb_connection_has_error(connection.get()))
        return;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data->root;
    const Rectangle rectangle = RectangleOf(connection.get(), window ? window : root);
    // Of the root window, so that windows on top are in the picture.
    const Owned<xcb_get_image_reply_t> image(xcb_get_image_reply(connection.get(),
        xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, root, rectangle.x, rectangle.y,
            rectangle.width, rectangle.height, ~0U),
        nullptr));
    const size_t count = size_t(rectangle.width) * rectangle.height;
    if (!image || size_t(xcb_get_image_data_length(image.get())) != count * 4)
        return;
    m_width = rectangle.width;
    m_height = rectangle.height;
    m_pixels.resize(count);
    std::memcpy(m_pixels.data(), xcb_get_image_data(image.get()), count * 4);
}

uint32_t ScreenPixels::At(int x, int y) const
{
    if (x < 0 || y < 0 || x >= m_width || y >= m_height)
        return 0xFFFFFFFF;
    return m_pixels[size_t(y) * size_t(m_width) + size_t(x)] & 0xFFFFFF;
}

int ScreenPixels::Count(uint32_t color, int left, int top, int right, int bottom) const
{
    int count = 0;
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x)
            count += At(x, y) == color;
    }
    return count;
}
