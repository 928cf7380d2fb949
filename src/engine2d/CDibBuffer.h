#pragma once

#include "engine2d/IVisBuffer.h"

#include <array>
#include <memory>

// The one implementation of IVisBuffer: two images of the image module. Without that module it
// stays empty, and whoever draws finds no pixels.
class CDibBuffer final : public IVisBuffer
{
public:
    // Makes both images anew, black with alpha 255. On failure the buffer is empty.
    void MakeImages(int32_t width, int32_t height);
    void FreeImages();

    // What both images of that size take.
    static int64_t PixelsOf(int32_t width, int32_t height)
    {
        return int64_t { width } * height * 2;
    }

    uint32_t* GetBits(int32_t offset) override;
    IOQImage* GetImage(int32_t offset) override;
    intptr_t GetImageHandle(int32_t offset) override;
    OQSize* GetSize(OQSize* out) override;
    void Flip() override;
    const OQBitmapInfo* GetBitmapInfo() override;

private:
    std::array<std::unique_ptr<IOQImage>, 2> m_images;
    int32_t m_current = 0;
    int32_t m_count = 0; // 2 once the images are made
};
