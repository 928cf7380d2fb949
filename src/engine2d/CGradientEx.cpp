#include "engine2d/CGradientEx.h"

#include "engine2d/VisLimits.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQNumberText.h"
#include "foundation/OQTruncate.h"

#include <algorithm>

namespace {

const OQChar* SkipAll(const OQChar* text, OQChar character)
{
    while (*text == character)
        ++text;
    return text;
}

// Behind the next `character`, or null if `stop` or the end comes first.
const OQChar* CutBehind(const OQChar* text, OQChar character, OQChar stop = 0)
{
    while (*text && *text != character && *text != stop)
        ++text;
    return *text == character ? text + 1 : nullptr;
}

bool EndsColor(OQChar character)
{
    return character == u',' || character == u']' || character == u' ';
}

}

void CGradientEx::SetDefault()
{
    OQSeedRand(static_cast<uint32_t>(OQClockMilliseconds()));
    m_table.clear();
    m_tableSize = -1;
    m_width = 2;
    m_height = 4;
    m_cells = { 0x0000FF, 0, 0x00FF00, 0, 0xFF0000, 0, 0x0000FF, 0 };
}

void CGradientEx::SetText(const OQString& text)
{
    int32_t position = 0;
    const TextFault fault = ParseText(text, position);
    if (fault == TextFault::Size || fault == TextFault::TooManyCells || fault == TextFault::Cells)
        SetDefault();
}

CGradientEx::TextFault CGradientEx::CheckText(const OQString& text, int32_t& position)
{
    return CGradientEx().ParseText(text, position);
}

CGradientEx::TextFault CGradientEx::ParseText(const OQString& text, int32_t& position)
{
    position = 0;
    m_table.clear();
    m_tableSize = -1;
    const OQChar* at = SkipAll(text.GetText(), u'{');
    const int32_t width = OQTextToInt(at);
    at = CutBehind(at, u',');
    if (!at)
        return TextFault::Size;
    const int32_t height = OQTextToInt(at);
    at = CutBehind(at, u'[');
    if (!at || width < 1 || height < 1)
        return TextFault::Size;
    if (int64_t { width } * height > VisLimits::gradientCells)
        return TextFault::TooManyCells;

    std::vector<uint32_t> cells;
    cells.reserve(static_cast<size_t>(width) * static_cast<size_t>(height));
    TextFault fault = TextFault::None;
    const auto note = [&](TextFault found, const OQChar* where) {
        if (fault != TextFault::None)
            return;
        fault = found;
        position = static_cast<int32_t>(where - text.GetText());
    };
    for (int32_t row = 0; row < height; ++row) {
        at = SkipAll(at, u'[');
        for (int32_t column = 0; column < width; ++column) {
            // A blank in front hides the "0x": such a colour reads as the digit 0, black.
            const OQChar* start = at;
            if (at[0] == u'0' && at[1] == u'x')
                at += 2;
            int consumed = 0;
            cells.push_back(OQHexTextToUInt(at, &consumed) & 0xFFFFFF);
            if (consumed == 0 || !EndsColor(at[consumed]))
                note(TextFault::Color, start);
            else if (column == width - 1 && at[consumed] == u',')
                note(TextFault::Surplus, at + consumed);
            at = column < width - 1 ? CutBehind(at, u',', u']') : CutBehind(at, u']');
            if (!at) {
                position = static_cast<int32_t>(start - text.GetText());
                return TextFault::Cells;
            }
        }
        at = SkipAll(at, u']');
    }
    if (*at == u'[')
        note(TextFault::Surplus, at);
    m_width = width;
    m_height = height;
    m_cells = std::move(cells);
    return fault;
}

OQString CGradientEx::GetText() const
{
    OQString text = u"{" + OQIntToText(m_width) + u", " + OQIntToText(m_height) + u"} [";
    for (int32_t row = 0; row < m_height; ++row) {
        text += u'[';
        for (int32_t column = 0; column < m_width; ++column) {
            if (column > 0)
                text += u',';
            text += u"0x" + OQHexToText(m_cells[static_cast<size_t>(row * m_width + column)], 6);
        }
        text += u']';
    }
    return text + u"]";
}

uint32_t CGradientEx::Lookup(float x, float y) const
{
    const float fx = static_cast<float>(m_width - 1) * x;
    const int32_t ix = std::min(OQTruncateToInt32(fx), m_width - 2);
    const float tx = fx - static_cast<float>(ix);
    const float fy = static_cast<float>(m_height - 1) * y;
    const int32_t iy = std::min(OQTruncateToInt32(fy), m_height - 2);
    const float ty = fy - static_cast<float>(iy);

    const struct
    {
        int32_t column;
        int32_t row;
        float weight;
    } corners[4] = {
        { ix, iy, (1 - tx) * (1 - ty) },
        { ix + 1, iy, tx * (1 - ty) },
        { ix, iy + 1, (1 - tx) * ty },
        { ix + 1, iy + 1, tx * ty },
    };

    uint32_t bytes[3] = {};
    for (const auto& corner : corners) {
        // With one column or row the index in front of it is -1; its weight is 0.
        if (corner.column < 0 || corner.row < 0 || corner.column >= m_width
            || corner.row >= m_height)
            continue;
        const uint32_t cell = m_cells[static_cast<size_t>(corner.row * m_width + corner.column)];
        for (int byte = 0; byte < 3; ++byte) {
            const float value = static_cast<float>((cell >> (byte * 8)) & 0xFF);
            bytes[byte] += static_cast<uint32_t>(OQTruncateToInt32(value * corner.weight));
        }
    }
    return (bytes[0] & 0xFF) << 16 | (bytes[1] & 0xFF) << 8 | (bytes[2] & 0xFF);
}

void CGradientEx::BuildTable(float y, int32_t n)
{
    m_tableSize = n;
    m_tableY = y;
    m_table.resize(static_cast<size_t>(std::clamp(n, 0, VisLimits::gradientTableEntries)));
    for (size_t i = 0; i < m_table.size(); ++i)
        m_table[i] = Lookup(static_cast<float>(i) / static_cast<float>(n), y);
}

uint32_t CGradientEx::TableColor(int32_t index) const
{
    if (static_cast<size_t>(index) < m_table.size())
        return m_table[static_cast<size_t>(index)];
    return Lookup(static_cast<float>(index) / static_cast<float>(m_tableSize), m_tableY);
}
