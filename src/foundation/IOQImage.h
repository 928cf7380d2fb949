#pragma once

#include "foundation/OQChar.h"
#include "foundation/OQGeometry.h"

#include <cstdint>

class IOQFont;

// What a device needs to know about an image's pixel array: 32 bits a pixel, rows bottom-up,
// no padding between rows.
struct OQBitmapInfo
{
    int32_t width = 0;
    int32_t height = 0;
    int32_t bitsPerPixel = 32;
    int32_t strideBytes = 0;
};

// A picture in memory, made by the image module. A pixel is 32 bits and reads 0xAARRGGBB as an
// integer; row y from the top lies at element (height - 1 - y) * width of the array. Owned by
// whoever made it and destroyed through the virtual destructor; one thread at a time. A
// COLORREF-like colour is 0x00BBGGRR: red lowest. Positions and rectangles count from the top left.
// Slots: add at the end only.
class IOQImage
{
public:
    virtual ~IOQImage() = default;

    // Hints to other implementations; here they have no effect.
    virtual void SetOption(int32_t value) = 0;
    virtual void SetOption2(int32_t value) = 0;

    // Makes a black, transparent picture of width x height pixels. False, and an empty image, if a
    // side is below 1, the picture is past the limits, or memory is short. The last two are 0.
    virtual bool Create(int32_t width, int32_t height, int32_t reserved1, int32_t reserved2) = 0;

    virtual void Clear(uint32_t color, uint8_t alpha) = 0;

    // Null and 0 x 0 for an empty image.
    virtual uint32_t* GetBits() = 0;
    virtual OQSize GetSize() const = 0;
    virtual intptr_t GetImageHandle() const = 0;
    virtual const OQBitmapInfo* GetBitmapInfo() const = 0;

    // Fills what of the rectangle lies inside the image; the alpha byte becomes `alpha`.
    virtual void FillRect(const OQRect& rect, uint32_t color, uint8_t alpha, int32_t reserved) = 0;

    // Integer Bresenham, both ends included, clipped to the image, one pixel wide; pixels take
    // the colour with `alpha` of the colour's own top byte.
    virtual void DrawLine(
        int32_t x1, int32_t y1, int32_t x2, int32_t y2, uint32_t color, int32_t reserved)
        = 0;

    // Copies the pixels of `source` that lie in `sourceRect` to this image with its top left corner
    // at (x, y), all four bytes, clipped to both images.
    virtual void CopyRect(IOQImage& source, const OQRect& sourceRect, int32_t x, int32_t y) = 0;

    // Stretches the whole image to a width x height block of 32-bit pixels whose first row is the
    // top one when `stride` is positive (bytes from a row to the next). Bilinear. False if there is
    // nothing to copy.
    virtual bool Blit(void* target, int32_t width, int32_t height, int32_t strideBytes) const = 0;

    // Draws text, a null font being the default one, into the rectangle from its top left; clipped
    // to it. alignment: 0 left, 1 centre, 2 right.
    virtual void DrawText(const OQChar* text, const OQRect& rect, uint32_t color, IOQFont* font,
        int32_t alignment, int32_t reserved1, int32_t reserved2)
        = 0;

    // Writes the picture to `path` as PNG; with `opaque` the alpha bytes are ignored. False if it
    // can't be written.
    virtual bool SavePng(const OQChar* path, bool opaque) const = 0;
};

// The image module's interface, given by its export GetOQImageAppDLL(). Slots: add at the end only.
class IOQImageApp
{
public:
    virtual void Initialize(const void* parameter) = 0;
    virtual void Uninitialize() = 0;
    virtual IOQImage* CreateImage() = 0; // The caller owns it.
};
