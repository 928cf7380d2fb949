#include "PresenterTesting.h"

#include "ScreenPixels.h"

#include "kernels/Stretch.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int kLeft = 40;
constexpr int kTop = 30;

}

HostWindow::HostWindow(uint16_t width, uint16_t height, uint32_t eventMask)
    : m_connection(xcb_connect(nullptr, nullptr))
    , m_id(xcb_generate_id(m_connection))
{
    const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    const uint32_t values[] = { screen->black_pixel, eventMask };
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_id, screen->root, kLeft, kTop, width,
        height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
        XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
    xcb_map_window(m_connection, m_id);
    Synchronize();
}

HostWindow::~HostWindow()
{
    xcb_disconnect(m_connection);
}

void HostWindow::Resize(uint16_t width, uint16_t height)
{
    const uint32_t values[] = { width, height };
    xcb_configure_window(
        m_connection, m_id, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
    Synchronize();
}

void HostWindow::Destroy()
{
    xcb_destroy_window(m_connection, m_id);
    Synchronize();
}

void HostWindow::Synchronize()
{
    free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

Squares::Squares(int32_t width, int32_t height)
    : m_width(width)
    , m_height(height)
{
    for (uint32_t i = 0; i < uint32_t(width) * uint32_t(height); ++i)
        m_bits.push_back((i + 1) * 2654435761u);
}

namespace {

bool IsNear(uint32_t a, uint32_t b)
{
    for (int shift = 0; shift < 24; shift += 8)
        if (std::abs(int(a >> shift & 0xFF) - int(b >> shift & 0xFF)) > 3)
            return false;
    return true;
}

}

bool IsShownSoon(pxvis::Presenter& presenter, const pxvis::PresenterPicture& picture, int32_t width,
    int32_t height)
{
    std::vector<uint32_t> expected(size_t(width) * size_t(height));
    pxvis::kernels::Stretch(expected.data(), width, width, height,
        picture.bits + int64_t { picture.height - 1 } * picture.width, -picture.width,
        picture.width, picture.height);
    return HoldsSoon([&] {
        if (!presenter.Present(picture, width, height))
            return false;
        const ScreenPixels seen(std::getenv("DISPLAY"));
        for (int y = 0; y < std::min(height, seen.GetHeight() - kTop); ++y)
            for (int x = 0; x < std::min(width, seen.GetWidth() - kLeft); ++x)
                if (!IsNear(seen.At(kLeft + x, kTop + y),
                        expected[size_t(y) * size_t(width) + size_t(x)]))
                    return false;
        return seen.GetWidth() > 0;
    });
}

bool FailsSoon(pxvis::Presenter& presenter)
{
    const Squares picture(4, 3);
    return HoldsSoon([&] { return !presenter.Present(picture, 32, 24); });
}
