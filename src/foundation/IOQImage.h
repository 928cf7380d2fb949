#pragma once

#include "foundation/IOQDllString.h"
#include "foundation/IOQFont.h"
#include "foundation/OQChar.h"
#include "foundation/OQGeometry.h"

#include <cstdint>

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
// whoever made it and destroyed through the virtual destructor; one thread at a time. A colour is
// 0x00BBGGRR: red lowest. Positions and rectangles count from the top left; a rectangle whose right
// or bottom isn't beyond its left or top is empty. On an empty image every operation but Create
// does nothing. Nothing is thrown.
// Slots: add at the end only.
class IOQImage
{
public:
    virtual ~IOQImage() = default;

    // Hints to other implementations; here they have no effect.
    virtual void SetOption(int32_t value) = 0;
    virtual void SetOption2(int32_t value) = 0;

    // Makes a black, transparent picture of width x height pixels in place of what there was.
    // False, and an empty image, if a side is below 1 or above 16384, the picture has more than 64
    // * 2^20 pixels, or memory is short. The last two are 0.
    virtual bool Create(int32_t width, int32_t height, int32_t reserved1, int32_t reserved2) = 0;

    virtual void Clear(uint32_t color, uint8_t alpha) = 0;

    // Null for an empty image. Stays where it is until the next Create.
    virtual uint32_t* GetBits() = 0;
    virtual OQSize GetSize() const = 0;
    // A number that differs between images that are alive; 0 for an empty one.
    virtual intptr_t GetImageHandle() const = 0;
    // Null for an empty image.
    virtual const OQBitmapInfo* GetBitmapInfo() const = 0;

    // Fills what of the rectangle lies inside the image; the alpha byte becomes `alpha`.
    virtual void FillRect(const OQRect& rect, uint32_t color, uint8_t alpha, int32_t reserved) = 0;

    // Integer Bresenham, both ends included, clipped to the image, one pixel wide; the alpha byte
    // becomes the colour's top byte. Any coordinates; the cost is that of the visible pixels.
    virtual void DrawLine(
        int32_t x1, int32_t y1, int32_t x2, int32_t y2, uint32_t color, int32_t reserved)
        = 0;

    // Copies the pixels of `source` that lie in `sourceRect` to this image with the rectangle's top
    // left corner at (x, y), all four bytes, clipped to both images. `source` may be this image.
    virtual void CopyRect(IOQImage& source, const OQRect& sourceRect, int32_t x, int32_t y) = 0;

    // Stretches the whole image over width x height pixels of 4 bytes; bilinear, all four bytes
    // alike, an exact copy at the image's own size. `target` is the top left pixel, the row below
    // lies strideBytes further on, or before it where that is negative. False, and nothing
    // written, for an empty image, a size below 1, a stride shorter than a row, or a pointer or
    // stride that isn't a multiple of 4.
    virtual bool Blit(void* target, int32_t width, int32_t height, int32_t strideBytes) const = 0;

    // Draws text into the rectangle, wrapped at its width and clipped to it and to the image; alpha
    // bytes stay as they are. The text ends at a 0 or at 16384 units. alignment: the low two bits
    // 0 left, 1 centre, 2 right; the next two 0 top, 1 centre, 2 bottom. The font is one of this
    // module's, or null, which is a sans-serif of 12 pixels. With a font, the same text again in a
    // box of the same width, wherever it lies and in whatever colour, is only blended.
    virtual void DrawText(const OQChar* text, const OQRect& rect, uint32_t color, IOQFont* font,
        int32_t alignment, int32_t reserved1, int32_t reserved2)
        = 0;

    // Writes the picture to `path` as PNG; with `opaque` the alpha bytes are left out. An existing
    // file is replaced once the new one is complete; on failure it stays as it is. False if it
    // can't be written, or if the path names something else than a file.
    virtual bool SavePng(const OQChar* path, bool opaque) const = 0;

    // Reads a PNG, JPEG, GIF, BMP, TIFF, ICO or, where the system has its decoder, WebP file,
    // turned upright, its first frame. Below 1 or above 16384 in a side, more than 64 * 2^20 pixels
    // or 64 MiB are refused before memory is taken, as is anything but a regular file, and a file
    // that is cut off. The picture is stretched to |width| x |height|; a side given as 0 keeps its
    // own. False, and an empty image, on failure. The others are 0, -1, 1 and four times 0.
    virtual bool Load(const OQChar* path, int32_t width, int32_t height, int32_t reserved1,
        int32_t reserved2, int32_t reserved3, int32_t reserved4, int32_t reserved5,
        int32_t reserved6, int32_t reserved7)
        = 0;
    // The same from what a host's GetCoverImage gave, a pxvis HostPicture, which is only read.
    virtual bool LoadFromHost(const void* value, int32_t width, int32_t height) = 0;

    // Not empty.
    virtual bool IsValid() const = 0;

    // Stretches this image over the rectangle of `target`, bilinear when it grows, averaging when
    // it shrinks, and blends it over what is there by its alpha; clipped to `target`, whose alpha
    // bytes stay. With `keepShape` the largest centred part of the rectangle that has this
    // picture's shape. False if either is empty or there is no memory.
    virtual bool DrawTo(IOQImage& target, const OQRect& rect, bool keepShape) const = 0;

    // As SavePng, as JPEG without alpha. quality: 1 to 100, others are brought into it. The last
    // one is -1.
    virtual bool SaveJpeg(const OQChar* path, int32_t quality, int32_t reserved) const = 0;

    // What the last Load cost, whether it went well or not, as pixels that a decoder went over;
    // bytes that were only looked at count as a quarter of one.
    virtual int64_t GetLoadedPixels() const = 0;

    // Makes `result` the very pixels that DrawTo would lay over a target of that size, and `place`
    // where they go, inside the target: whoever draws a picture often keeps them, and draws them
    // there with no stretching. False, with `place` and `result` empty, where nothing would be
    // drawn or there is no memory. `result` is another image.
    virtual bool StretchForDrawTo(IOQImage& result, const OQSize& target, const OQRect& rect,
        bool keepShape, OQRect& place) const = 0;

    // The size in pixels of what DrawText would draw into a box of that width: the widest line's
    // width and the height of all lines. The text ends as in DrawText, and the font is as there.
    // The alignment makes no difference. 0 by 0 for an empty text or a width below 1.
    virtual OQSize MeasureText(
        const OQChar* text, IOQFont* font, int32_t alignment, int32_t availableWidth) const = 0;
};

// The image module's interface, given by its one export, extern "C" IOQImageApp*
// GetOQImageAppDLL(). Lives as long as the process. Any thread. Slots: add at the end only.
class IOQImageApp
{
public:
    virtual void Initialize(const void* parameter) = 0;
    // Lets go of what is kept between calls; it comes back on demand.
    virtual void Uninitialize() = 0;
    virtual IOQImage* CreateImage() = 0; // Empty; the caller owns it. Null without memory.

    // The font families that text can be drawn with, sorted, an LF between two. False, and an empty
    // text, without memory.
    virtual bool ListFonts(IOQDllString& names) = 0;

    // The caller owns it. Another font stands in for a family that isn't there, and for characters
    // that the family doesn't have. A name is only ever compared with those of installed families.
    // Null without memory.
    virtual IOQFont* CreateFont(const OQFontDescriptor& descriptor) = 0;

protected:
    ~IOQImageApp() = default;
};
