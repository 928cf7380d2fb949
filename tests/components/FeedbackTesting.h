#pragma once

#include "VisTesting.h"
#include "engine2d/CVisPropertyList.h"
#include "foundation/OQEngineContext.h"

#include <initializer_list>
#include <utility>

using FeedbackRows = std::initializer_list<std::pair<const OQChar*, const OQChar*>>;

// A feedback component on a picture of its own, whose blue counts columns and whose green counts
// rows before each draw. With the colour equation that stands here unless the rows have another
// one, each pixel tells where it came from.
template <typename Component>
struct FeedbackScene
{
    explicit FeedbackScene(FeedbackRows rows, int32_t width = 40, int32_t height = 24)
    {
        CVisPropertyList list;
        list.AddRow(u"ColorFadeEquation", u"r=1.255;g=r;b=r"); // 256 in the pass
        for (const auto& [name, value] : rows)
            list.AddRow(name, value);
        component.LoadProperties(&list);
        component.SetRect({ 0, 0, width, height });
        buffer.MakeImages(width, height);
        context.virtualClock = true;
    }

    int32_t Draw()
    {
        OQSize size;
        buffer.GetSize(&size);
        for (int32_t y = 0; y < size.cy; ++y) {
            for (int32_t x = 0; x < size.cx; ++x)
                PixelAt(buffer, x, y) = static_cast<uint32_t>(y << 8 | x);
        }
        const OQEngineContextScope scope(&context);
        return component.Draw(buffer, audio);
    }

    // Draws flat grey and gives a pixel of what becomes of it.
    uint32_t DrawGrey()
    {
        FillBuffer(buffer, 0x00808080);
        const OQEngineContextScope scope(&context);
        component.Draw(buffer, audio);
        return PixelAt(buffer, 5, 5);
    }

    std::pair<int32_t, int32_t> SourceOf(int32_t x, int32_t y)
    {
        const uint32_t pixel = PixelAt(buffer, x, y);
        return { static_cast<int32_t>(pixel & 0xFF) - x / 4,
            static_cast<int32_t>(pixel >> 8 & 0xFF) - y / 4 };
    }

    OQEngineContext context;
    CDibBuffer buffer;
    TestAudio audio;
    Component component;
};

// The generator's state after so many numbers from a seed.
inline uint32_t RandomStateAfter(uint32_t seed, int numbers)
{
    OQEngineContext context;
    const OQEngineContextScope scope(&context);
    OQSeedRand(seed);
    for (int i = 0; i < numbers; ++i)
        OQRand();
    return context.randomState;
}
