#pragma once

#include "platform/Presenter.h"

#include <chrono>
#include <cstdint>
#include <thread>
#include <vector>
#include <xcb/xcb.h>

// What a host has: a connection and a window to show pictures in.
class HostWindow
{
public:
    HostWindow(uint16_t width, uint16_t height, uint32_t eventMask = 0);
    ~HostWindow();
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;

    xcb_connection_t* Connection() const { return m_connection; }

    uint32_t Id() const { return m_id; }

    void Resize(uint16_t width, uint16_t height);
    void Destroy();

private:
    void Synchronize();

    xcb_connection_t* m_connection;
    uint32_t m_id;
};

// Small coloured squares without a symmetry, with junk in the unused top bytes.
class Squares
{
public:
    Squares(int32_t width, int32_t height);

    operator pxvis::PresenterPicture() const { return { m_bits.data(), m_width, m_height }; }

private:
    int32_t m_width;
    int32_t m_height;
    std::vector<uint32_t> m_bits;
};

// Ten seconds, for a machine that does much else, until the condition holds.
template <class Condition>
bool HoldsSoon(Condition condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

// The picture, stretched, is what the only window shows as far as it lies on the screen, soon,
// while it is presented again and again.
bool IsShownSoon(pxvis::Presenter& presenter, const pxvis::PresenterPicture& picture, int32_t width,
    int32_t height);

// Presenting becomes impossible.
bool FailsSoon(pxvis::Presenter& presenter);
