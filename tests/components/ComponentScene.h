#pragma once

#include "VisTesting.h"
#include "engine2d/CVisPropertyList.h"
#include "foundation/OQEngineContext.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

using Rows = std::initializer_list<std::pair<const OQChar*, OQString>>;

// A component on a picture, with audio and an engine context of its own.
template <typename Component, uint32_t Background = 0xFF555555>
struct ComponentScene
{
    static constexpr uint32_t background = Background;

    // The rows stand behind the scene's own, so that they win.
    ComponentScene(Rows own, Rows rows, int32_t width, int32_t height)
    {
        context.virtualClock = true;
        CVisPropertyList list;
        for (const Rows& some : { own, rows }) {
            for (const auto& [name, value] : some)
                list.AddRow(name, value);
        }
        component.LoadProperties(&list);
        component.SetRect({ 0, 0, width, height });
        buffer.MakeImages(width, height);
    }

    // On what is there.
    int32_t DrawOver()
    {
        const OQEngineContextScope scope(&context);
        return component.Draw(buffer, audio);
    }

    int32_t Draw()
    {
        FillBuffer(buffer, background);
        return DrawOver();
    }

    OQSize Size()
    {
        OQSize size;
        buffer.GetSize(&size);
        return size;
    }

    uint32_t Pixel(int32_t x, int32_t y) { return PixelAt(buffer, x, y); }

    uint32_t MiddlePixel() { return Pixel(Size().cx / 2, Size().cy / 2); }

    // How many pixels aren't the background's.
    int PaintedCount()
    {
        const OQSize size = Size();
        const uint32_t* bits = buffer.GetBits(0);
        return static_cast<int>(std::count_if(bits, bits + int64_t { size.cx } * size.cy,
            [](uint32_t pixel) { return pixel != background; }));
    }

    // The bounds of those; all 0 for none.
    OQRect PaintedArea()
    {
        const OQSize size = Size();
        OQRect area { size.cx, size.cy, 0, 0 };
        for (int32_t y = 0; y < size.cy; ++y) {
            for (int32_t x = 0; x < size.cx; ++x) {
                if (Pixel(x, y) != background)
                    area = { std::min(area.left, x), std::min(area.top, y),
                        std::max(area.right, x + 1), std::max(area.bottom, y + 1) };
            }
        }
        return area.right > 0 ? area : OQRect {};
    }

    OQEngineContext context;
    CDibBuffer buffer;
    TestAudio audio;
    Component component;
};
