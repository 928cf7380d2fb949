#pragma once

#include "foundation/IOQImage.h"

// A layer's ring of images, as components see it. Offset 0 is the current image; with two images -1
// and 1 both name the other one. Slots: add at the end only.
class IVisBuffer
{
public:
    // The pixels of the image at `offset`: 0xAARRGGBB, rows bottom-up, no padding. Null if there is
    // no such image.
    virtual uint32_t* GetBits(int32_t offset) = 0;
    virtual IOQImage* GetImage(int32_t offset) = 0;
    virtual intptr_t GetImageHandle(int32_t offset) = 0;

    // 0 x 0 without images. Gives `out`.
    virtual OQSize* GetSize(OQSize* out) = 0;

    // Makes the next image of the ring current.
    virtual void Flip() = 0;
    virtual ~IVisBuffer() = default;
    virtual const OQBitmapInfo* GetBitmapInfo() = 0;
};
