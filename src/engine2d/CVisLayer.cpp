#include "engine2d/CVisLayer.h"

#include "engine2d/CVisLayerPiece.h"
#include "foundation/OQParallelRows.h"
#include "kernels/Merge.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr int32_t smallestSide = 5; // pixels
// Below, one thread's caches and memory are as fast as two threads.
constexpr int64_t fewestPixelsForThreads = 1600 * 1200;

// Only these modes merge; any other leaves the parent as it is.
enum OutputMode : int32_t
{
    OutputModeReplace = 0,
    OutputModeBlend = 1,
    OutputModeAdd = 2,
};

void MergeRun(
    int32_t mode, uint32_t* target, const uint32_t* source, int32_t count, uint32_t transparent)
{
    switch (mode) {
    case OutputModeReplace:
        // White in all three colours is the default and means a plain copy, white pixels included.
        if ((transparent & 0xFFFFFF) == 0xFFFFFF)
            std::memcpy(target, source, static_cast<size_t>(count) * sizeof *target);
        else
            pxvis::kernels::MergeReplace(target, source, count, transparent);
        break;
    case OutputModeBlend:
        pxvis::kernels::MergeBlend(target, source, count, transparent);
        break;
    case OutputModeAdd:
        pxvis::kernels::MergeAdd(target, source, count, transparent);
        break;
    default:
        break;
    }
}

}

CVisLayer::CVisLayer(CVisLayerPiece& ownerPiece)
    : m_ownerPiece(ownerPiece)
{
}

CVisLayer::~CVisLayer() = default;

int32_t CVisLayer::Resize(const OQRect& parentRect)
{
    m_pixelRect = PixelRect(m_ownerPiece.GetRectangle(), parentRect.Width(), parentRect.Height());
    const OQRect own { 0, 0, m_pixelRect.Width(), m_pixelRect.Height() };
    if (own.right < smallestSide || own.bottom < smallestSide) {
        m_sized = false;
        return -1;
    }
    if (!m_ownerPiece.KeepPixels(CDibBuffer::PixelsOf(own.right, own.bottom))) {
        m_buffer.FreeImages();
        m_sized = false;
        return -1;
    }
    for (CVisLayerPiece* piece : m_pieces) {
        try {
            piece->Resize(own);
        } catch (...) {
            // One piece's failure must not take the others with it.
        }
    }
    m_buffer.MakeImages(own.right, own.bottom);
    m_sized = true;
    return 0;
}

int32_t CVisLayer::Draw(IVisAudioData& audio, const OQRect& parentRect)
{
    if (!m_sized && Resize(parentRect) != 0)
        return -1;
    const OQRect own { 0, 0, m_pixelRect.Width(), m_pixelRect.Height() };
    if (own.right < smallestSide || own.bottom < smallestSide)
        return -1;
    for (CVisLayerPiece* piece : m_pieces) {
        try {
            piece->Draw(m_buffer, audio, own);
        } catch (...) {
            // One piece's failure must not take the others with it.
        }
    }
    return 0;
}

void CVisLayer::MergeInto(IVisBuffer& parent, int32_t outputMode, uint32_t transparentColor)
{
    OQSize target;
    parent.GetSize(&target);
    OQSize source;
    m_buffer.GetSize(&source);
    uint32_t* targetBits = parent.GetBits(0);
    const uint32_t* sourceBits = m_buffer.GetBits(0);
    if (!targetBits || !sourceBits)
        return;

    const int32_t left = std::clamp(m_pixelRect.left, 0, target.cx);
    const int32_t top = std::clamp(m_pixelRect.top, 0, target.cy);
    const int32_t bottom = std::clamp(m_pixelRect.bottom, 0, target.cy);
    // A layer that could not take its new size still has images of the old one, maybe smaller.
    const int64_t sourceColumn = int64_t { left } - m_pixelRect.left;
    const int64_t columns = std::min<int64_t>(
        std::clamp(m_pixelRect.right, 0, target.cx) - left, source.cx - sourceColumn);
    if (columns <= 0)
        return;
    const auto mergeRows = [&](int32_t first, int32_t last) {
        for (int32_t y = first; y < last; ++y) {
            const int64_t sourceRow
                = std::min<int64_t>(int64_t { y } - m_pixelRect.top, source.cy - 1);
            MergeRun(outputMode, targetBits + int64_t { target.cy - 1 - y } * target.cx + left,
                sourceBits + (source.cy - 1 - sourceRow) * source.cx + sourceColumn,
                static_cast<int32_t>(columns), transparentColor);
        }
    };
    if (columns * (bottom - top) < fewestPixelsForThreads)
        mergeRows(top, bottom);
    else
        OQParallelRows(top, bottom, static_cast<int32_t>(columns), mergeRows);
}

void CVisLayer::InsertPiece(int32_t index, std::unique_ptr<CVisLayerPiece> piece)
{
    piece->SetParent(&m_ownerPiece);
    m_pieces.Insert(index, piece.release());
}

std::unique_ptr<CVisLayerPiece> CVisLayer::TakePiece(int32_t index)
{
    return std::unique_ptr<CVisLayerPiece>(m_pieces.Detach(index));
}
