#pragma once

#include "ComponentScene.h"
#include "foundation/OQEngineContext.h"

#include <utility>

// A feedback component on a picture of its own, whose blue counts columns and whose green counts
// rows before each draw. With the colour equation that stands here unless the rows have another
// one, each pixel tells where it came from.
template <typename Component>
struct FeedbackScene : ComponentScene<Component>
{
    explicit FeedbackScene(Rows rows, int32_t width = 40, int32_t height = 24)
        : ComponentScene<Component>({ { u"ColorFadeEquation", u"r=1.255;g=r;b=r" } }, rows, width,
            height) // 256 in the pass
    {
    }

    int32_t Draw()
    {
        const OQSize size = this->Size();
        for (int32_t y = 0; y < size.cy; ++y) {
            for (int32_t x = 0; x < size.cx; ++x)
                PixelAt(this->buffer, x, y) = static_cast<uint32_t>(y << 8 | x);
        }
        return this->DrawOver();
    }

    // Draws flat grey and gives a pixel of what becomes of it.
    uint32_t DrawGrey()
    {
        FillBuffer(this->buffer, 0x00808080);
        this->DrawOver();
        return this->Pixel(5, 5);
    }

    std::pair<int32_t, int32_t> SourceOf(int32_t x, int32_t y)
    {
        const uint32_t pixel = this->Pixel(x, y);
        return { static_cast<int32_t>(pixel & 0xFF) - x / 4,
            static_cast<int32_t>(pixel >> 8 & 0xFF) - y / 4 };
    }
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
