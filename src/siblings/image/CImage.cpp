#include "siblings/image/CImage.h"

#include "foundation/OQString.h"
#include "kernels/DrawLine.h"
#include "kernels/PixelFromColor.h"
#include "kernels/Stretch.h"
#include "os/File.h"
#include "siblings/image/CFont.h"
#include "siblings/image/ImageDecoder.h"
#include "siblings/image/ImageDrawing.h"
#include "siblings/image/ImageSaving.h"

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <pxvis/IOQVisualizationHost.h>

using pxvis::image::Pixels;
using pxvis::kernels::PixelFromColor;

namespace {

uint32_t PixelWithAlpha(uint32_t color, uint8_t alpha)
{
    return PixelFromColor(color) | uint32_t { alpha } << 24;
}

Pixels ViewOf(uint32_t* bits, int32_t width, int32_t height)
{
    return { bits + ptrdiff_t { height - 1 } * width, -ptrdiff_t { width }, width, height };
}

std::u16string_view TextOf(const OQChar* text)
{
    size_t length = 0;
    while (length < CImage::kMaxTextUnits && text[length])
        ++length;
    return { text, length };
}

std::string Utf8(const OQChar* text)
{
    const std::u16string_view view = TextOf(text);
    return OQString(view.data(), static_cast<int>(view.size())).ToUtf8();
}

// Calls `use` with the font, or with the one that stands for null and that all threads share.
template <typename Use>
void WithFont(IOQFont* font, Use use)
{
    if (font) {
        use(*static_cast<CFont*>(font));
        return;
    }
    static std::mutex lock;
    static CFont* const common = new CFont(OQFontDescriptor {});
    const std::lock_guard guard(lock);
    use(*common);
}

// Scripts may part folders by "\\".
bool ReadPicture(std::string path, std::string& bytes)
{
    using namespace pxvis::os;
    FileError error = ReadFile(path, pxvis::image::kMaxFileBytes, bytes);
    if (error == FileError::NotFound && path.find('\\') != std::string::npos) {
        std::replace(path.begin(), path.end(), '\\', '/');
        error = ReadFile(path, pxvis::image::kMaxFileBytes, bytes);
    }
    return error == FileError::None;
}

}

void CImage::FreeBits::operator()(uint32_t* bits) const
{
    std::free(bits);
}

Pixels CImage::View() const
{
    return ViewOf(m_bits.get(), m_info.width, m_info.height);
}

void CImage::SetOption(int32_t) { }

void CImage::SetOption2(int32_t) { }

bool CImage::Create(int32_t width, int32_t height, int32_t, int32_t)
{
    m_bits.reset();
    m_info = {};
    if (!pxvis::image::IsAllowedSize(width, height))
        return false;
    const auto count = static_cast<size_t>(width) * static_cast<size_t>(height);
    m_bits.reset(static_cast<uint32_t*>(std::calloc(count, sizeof(uint32_t))));
    if (!m_bits)
        return false;
    m_info.width = width;
    m_info.height = height;
    m_info.strideBytes = width * static_cast<int32_t>(sizeof(uint32_t));
    return true;
}

void CImage::Clear(uint32_t color, uint8_t alpha)
{
    if (m_bits)
        pxvis::image::FillRect(View(), pxvis::image::Bounds(View()), PixelWithAlpha(color, alpha));
}

uint32_t* CImage::GetBits()
{
    return m_bits.get();
}

OQSize CImage::GetSize() const
{
    return { m_info.width, m_info.height };
}

intptr_t CImage::GetImageHandle() const
{
    return reinterpret_cast<intptr_t>(m_bits.get());
}

const OQBitmapInfo* CImage::GetBitmapInfo() const
{
    return m_bits ? &m_info : nullptr;
}

void CImage::FillRect(const OQRect& rect, uint32_t color, uint8_t alpha, int32_t)
{
    if (m_bits)
        pxvis::image::FillRect(View(), rect, PixelWithAlpha(color, alpha));
}

void CImage::DrawLine(int32_t x1, int32_t y1, int32_t x2, int32_t y2, uint32_t color, int32_t)
{
    if (!m_bits)
        return;
    const Pixels view = View();
    pxvis::kernels::DrawLine(view.top, view.stride, view.width, view.height, x1, y1, x2, y2,
        PixelWithAlpha(color, static_cast<uint8_t>(color >> 24)));
}

void CImage::CopyRect(IOQImage& source, const OQRect& sourceRect, int32_t x, int32_t y)
{
    uint32_t* bits = source.GetBits();
    const OQSize size = source.GetSize();
    if (m_bits && bits)
        pxvis::image::CopyRect(View(), ViewOf(bits, size.cx, size.cy), sourceRect, x, y);
}

bool CImage::Blit(void* target, int32_t width, int32_t height, int32_t strideBytes) const
{
    constexpr int32_t pixelBytes = sizeof(uint32_t);
    const int64_t stride = std::abs(int64_t { strideBytes });
    if (!m_bits || !target || width < 1 || height < 1 || stride < int64_t { width } * pixelBytes
        || strideBytes % pixelBytes != 0
        || reinterpret_cast<uintptr_t>(target) % alignof(uint32_t) != 0)
        return false;
    const Pixels view = View();
    pxvis::kernels::Stretch(static_cast<uint32_t*>(target), strideBytes / pixelBytes, width, height,
        view.top, view.stride, view.width, view.height);
    return true;
}

void CImage::DrawText(const OQChar* text, const OQRect& rect, uint32_t color, IOQFont* font,
    int32_t alignment, int32_t, int32_t)
{
    if (!m_bits || !text)
        return;
    try {
        WithFont(font, [&](CFont& own) { own.Draw(View(), TextOf(text), rect, color, alignment); });
    } catch (...) {
        // Without memory there is no text; nothing crosses the module's border.
    }
}

OQSize CImage::MeasureText(const OQChar* text, IOQFont* font, int32_t, int32_t availableWidth) const
{
    OQSize size;
    if (!m_bits || !text)
        return size;
    try {
        WithFont(font, [&](CFont& own) { size = own.Measure(TextOf(text), availableWidth); });
    } catch (...) {
        // As above.
    }
    return size;
}

bool CImage::SavePng(const OQChar* path, bool opaque) const
{
    if (!m_bits || !path)
        return false;
    try {
        return pxvis::image::SavePng(View(), Utf8(path), opaque);
    } catch (...) {
        return false;
    }
}

bool CImage::Load(const OQChar* path, int32_t width, int32_t height, int32_t, int32_t, int32_t,
    int32_t, int32_t, int32_t, int32_t)
{
    Create(0, 0, 0, 0);
    m_loadedPixels = 0;
    if (!path)
        return false;
    try {
        std::string bytes;
        return ReadPicture(Utf8(path), bytes) && LoadBytes(bytes, width, height);
    } catch (...) {
        return false;
    }
}

bool CImage::LoadFromHost(const void* value, int32_t width, int32_t height)
{
    Create(0, 0, 0, 0);
    m_loadedPixels = 0;
    const auto* picture = static_cast<const HostPicture*>(value);
    if (!picture || !picture->bytes || picture->size > pxvis::image::kMaxFileBytes)
        return false;
    try {
        return LoadBytes(
            { reinterpret_cast<const char*>(picture->bytes), picture->size }, width, height);
    } catch (...) {
        return false;
    }
}

bool CImage::LoadBytes(std::string_view bytes, int32_t width, int32_t height)
{
    const int64_t askedWidth = std::abs(int64_t { width });
    const int64_t askedHeight = std::abs(int64_t { height });
    if (!pxvis::image::IsAllowedSize(
            std::max<int64_t>(askedWidth, 1), std::max<int64_t>(askedHeight, 1)))
        return false;
    const bool keepsSide = askedWidth == 0 || askedHeight == 0;
    m_loadedPixels = static_cast<int64_t>(bytes.size() / 4);
    pxvis::image::Pixbuf pixbuf = pxvis::image::Decode(bytes,
        keepsSide ? 0 : static_cast<int32_t>(std::max(askedWidth, askedHeight)), m_loadedPixels);
    if (!pixbuf)
        return false;
    const OQSize own = pxvis::image::SizeOfUpright(pixbuf.get());
    const OQSize asked { askedWidth ? static_cast<int32_t>(askedWidth) : own.cx,
        askedHeight ? static_cast<int32_t>(askedHeight) : own.cy };
    CImage upright;
    CImage& decoded = asked == own ? *this : upright;
    if (!decoded.Create(own.cx, own.cy, 0, 0))
        return false;
    pxvis::image::CopyUpright(decoded.View(), pixbuf.get());
    pixbuf.reset();
    if (asked == own)
        return true;
    CImage stretched;
    if (!stretched.Create(asked.cx, asked.cy, 0, 0))
        return false;
    pxvis::image::ImageStretch().Store(stretched.View(), upright.View());
    m_bits = std::move(stretched.m_bits);
    m_info = stretched.m_info;
    return true;
}

bool CImage::IsValid() const
{
    return m_bits != nullptr;
}

bool CImage::DrawTo(IOQImage& target, const OQRect& rect, bool keepShape) const
{
    uint32_t* bits = target.GetBits();
    const OQSize size = target.GetSize();
    if (!m_bits || !bits)
        return false;
    if (pxvis::image::IsEmpty(rect))
        return true;
    try {
        CImage copy; // when the picture is drawn on itself
        if (bits == m_bits.get()) {
            if (!copy.Create(m_info.width, m_info.height, 0, 0))
                return false;
            pxvis::image::CopyRect(copy.View(), View(), pxvis::image::Bounds(View()), 0, 0);
        }
        const Pixels source = copy.IsValid() ? copy.View() : View();
        m_stretch.Blend(ViewOf(bits, size.cx, size.cy), source,
            pxvis::image::PlacementIn(rect, source, keepShape));
        return true;
    } catch (...) {
        return false;
    }
}

bool CImage::SaveJpeg(const OQChar* path, int32_t quality, int32_t) const
{
    if (!m_bits || !path)
        return false;
    try {
        return pxvis::image::SaveJpeg(View(), Utf8(path), quality);
    } catch (...) {
        return false;
    }
}

int64_t CImage::GetLoadedPixels() const
{
    return m_loadedPixels;
}

bool CImage::StretchForDrawTo(
    IOQImage& result, const OQSize& target, const OQRect& rect, bool keepShape, OQRect& place) const
{
    place = {};
    result.Create(0, 0, 0, 0);
    if (!m_bits || pxvis::image::IsEmpty(rect))
        return false;
    const pxvis::image::Placement whole = pxvis::image::PlacementIn(rect, View(), keepShape);
    const OQRect visible = pxvis::image::VisiblePart(whole, target.cx, target.cy);
    if (pxvis::image::IsEmpty(visible) || !result.Create(visible.Width(), visible.Height(), 0, 0))
        return false;
    try {
        m_stretch.StorePart(
            ViewOf(result.GetBits(), visible.Width(), visible.Height()), View(), whole, visible);
        place = visible;
        return true;
    } catch (...) {
        result.Create(0, 0, 0, 0);
        return false;
    }
}
