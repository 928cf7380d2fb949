#pragma once

#include <cstdint>
#include <string>
#include <vector>

// What is to be seen of a display at the moment of reading, over a connection of its own.
class ScreenPixels
{
public:
    // The whole screen, or with a window what its rectangle shows, whoever drew it; the window is
    // mapped and lies inside the screen. Empty if it can't be read.
    explicit ScreenPixels(const std::string& display, uint32_t window = 0);

    int GetWidth() const { return m_width; }

    int GetHeight() const { return m_height; }

    // 0x00RRGGBB; 0xFFFFFFFF outside.
    uint32_t At(int x, int y) const;

    // How many pixels of the rectangle have the colour.
    int Count(uint32_t color, int left, int top, int right, int bottom) const;

private:
    int m_width = 0;
    int m_height = 0;
    std::vector<uint32_t> m_pixels;
};
