#pragma once

#include "foundation/IOQImage.h"
#include "siblings/image/ImageStretch.h"
#include "siblings/image/Pixels.h"

#include <memory>
#include <string_view>

// The image module's picture: an array of pixels, and drawing on it.
class CImage final : public IOQImage
{
public:
    static constexpr int kMaxTextUnits = 16384; // also of a path, which the system ends at 4096

    void SetOption(int32_t value) override;
    void SetOption2(int32_t value) override;
    bool Create(int32_t width, int32_t height, int32_t reserved1, int32_t reserved2) override;
    void Clear(uint32_t color, uint8_t alpha) override;
    uint32_t* GetBits() override;
    OQSize GetSize() const override;
    intptr_t GetImageHandle() const override;
    const OQBitmapInfo* GetBitmapInfo() const override;
    void FillRect(const OQRect& rect, uint32_t color, uint8_t alpha, int32_t reserved) override;
    void DrawLine(
        int32_t x1, int32_t y1, int32_t x2, int32_t y2, uint32_t color, int32_t reserved) override;
    void CopyRect(IOQImage& source, const OQRect& sourceRect, int32_t x, int32_t y) override;
    bool Blit(void* target, int32_t width, int32_t height, int32_t strideBytes) const override;
    void DrawText(const OQChar* text, const OQRect& rect, uint32_t color, IOQFont* font,
        int32_t alignment, int32_t reserved1, int32_t reserved2) override;
    bool SavePng(const OQChar* path, bool opaque) const override;
    bool Load(const OQChar* path, int32_t width, int32_t height, int32_t reserved1,
        int32_t reserved2, int32_t reserved3, int32_t reserved4, int32_t reserved5,
        int32_t reserved6, int32_t reserved7) override;
    bool LoadFromHost(const void* value, int32_t width, int32_t height) override;
    bool IsValid() const override;
    bool DrawTo(IOQImage& target, const OQRect& rect, bool keepShape) const override;
    bool SaveJpeg(const OQChar* path, int32_t quality, int32_t reserved) const override;
    int64_t GetLoadedPixels() const override;
    bool StretchForDrawTo(IOQImage& result, const OQSize& target, const OQRect& rect,
        bool keepShape, OQRect& place) const override;
    OQSize MeasureText(const OQChar* text, IOQFont* font, int32_t alignment,
        int32_t availableWidth) const override;

private:
    struct FreeBits
    {
        void operator()(uint32_t* bits) const;
    };

    bool LoadBytes(std::string_view bytes, int32_t width, int32_t height);

    // Only of an image that isn't empty.
    pxvis::image::Pixels View() const;

    std::unique_ptr<uint32_t[], FreeBits> m_bits;
    OQBitmapInfo m_info;
    int64_t m_loadedPixels = 0;
    mutable pxvis::image::ImageStretch m_stretch; // kept between frames
};
