#pragma once

#include "foundation/OQString.h"

#include <cstdint>
#include <vector>

// A grid of colours read with bilinear interpolation: the first coordinate runs along what is
// drawn, the second along time. Text form: "{W, H} [[row 1][row 2]...]", each row W colours
// "0xRRGGBB" separated by commas. No cells until SetText or SetDefault. Colours that come out are
// 0x00BBGGRR, red lowest.
class CGradientEx
{
public:
    virtual ~CGradientEx() = default;

    // Three primaries in the second coordinate, each fading to black. Seeds the random numbers from
    // the clock.
    void SetDefault();

    // An empty or malformed text gives the default.
    void SetText(const OQString& text);
    OQString GetText() const;

    // What SetText passes over in silence.
    enum class TextFault
    {
        None,
        Size, // not "{W, H} [", each 1 or more
        TooManyCells,
        Cells, // fewer than the size says
        Color, // one that does not begin as a hexadecimal number, or goes on as something else
        Surplus, // more colours or rows than the size says
    };

    // The first fault that makes the text give the default, or else the first of the last two
    // kinds, which change single colours. `position`: where in the text.
    static TextFault CheckText(const OQString& text, int32_t& position);

    // x, y: 0 to 1. Each of the four products of a byte is truncated on its own.
    uint32_t Lookup(float x, float y) const;

    // Entry i of n is Lookup(i / n, y); the last one does not quite reach x = 1.
    void BuildTable(float y, int32_t n);

    int32_t GetTableSize() const { return m_tableSize; }

    // 0 <= index < GetTableSize().
    uint32_t TableColor(int32_t index) const;

    int32_t GetWidth() const { return m_width; }

    int32_t GetHeight() const { return m_height; }

private:
    TextFault ParseText(const OQString& text, int32_t& position);

    std::vector<uint32_t> m_table; // the first entries; the rest of a very long table is looked up
    std::vector<uint32_t> m_cells; // pixels, 0x00RRGGBB, row after row
    int32_t m_width = 0;
    int32_t m_height = 0;
    int32_t m_tableSize = -1; // -1: no table
    float m_tableY = 0;
};
