#pragma once

#include "engine2d/CDibBuffer.h"
#include "foundation/OQArray.h"
#include "foundation/OQGeometry.h"

#include <memory>

class CVisLayerPiece;
class IVisAudioData;

// A layer's pieces, its ring of images, and its place in the parent. Held by a piece.
class CVisLayer
{
public:
    explicit CVisLayer(CVisLayerPiece& ownerPiece);
    ~CVisLayer();
    CVisLayer(const CVisLayer&) = delete;
    CVisLayer& operator=(const CVisLayer&) = delete;

    // Takes the layer's part of `parentRect`, sizes all pieces and makes both images anew. -1, with
    // the images as they were, for a size under 5 x 5, and -1, with none, past what the script may
    // keep.
    int32_t Resize(const OQRect& parentRect);

    // Sizes the layer if that is due and draws every piece in order.
    int32_t Draw(IVisAudioData& audio, const OQRect& parentRect);

    // Lays the current image over `parent` by an output mode (0 replace, 1 blend, 2 add), clipped
    // to it.
    void MergeInto(IVisBuffer& parent, int32_t outputMode, uint32_t transparentColor);

    void ForgetSize() { m_sized = false; }

    const OQRect& GetPixelRect() const { return m_pixelRect; }

    CDibBuffer& GetBuffer() { return m_buffer; }

    int32_t GetPieceCount() const { return m_pieces.GetCount(); }

    CVisLayerPiece* GetPiece(int32_t index) const { return m_pieces[index]; }

    // -1 if the piece is not directly in this layer.
    int32_t FindPiece(CVisLayerPiece* piece) const { return m_pieces.Find(piece); }

    // Takes a piece in at `index` and becomes its parent.
    void InsertPiece(int32_t index, std::unique_ptr<CVisLayerPiece> piece);
    std::unique_ptr<CVisLayerPiece> TakePiece(int32_t index);

private:
    bool m_sized = false; // Resize has run since the last load of the properties
    OQRect m_pixelRect; // in the parent's pixels
    CVisLayerPiece& m_ownerPiece;
    OQOwnedPtrArray<CVisLayerPiece> m_pieces; // drawing order
    CDibBuffer m_buffer;
};
