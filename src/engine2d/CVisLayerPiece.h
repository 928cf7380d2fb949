#pragma once

#include "engine2d/CVisRowInfo.h"
#include "engine2d/VisPropertyText.h"
#include "expression/CMathEvaluator.h"

#include <cstdint>
#include <memory>

class CVisComponent;
class CVisLayer;
class IVisAudioData;
class IVisBuffer;

// A node of a script's tree: empty, a component, or a layer with pieces of its own. Its on-equation
// decides each frame whether it draws. Operations give 0, or -1 for a failure.
class CVisLayerPiece
{
public:
    enum class Type : int32_t
    {
        Empty = 0,
        Component = 1,
        Layer = 2,
    };

    explicit CVisLayerPiece(CVisLayerPiece* parent);
    ~CVisLayerPiece();
    CVisLayerPiece(const CVisLayerPiece&) = delete;
    CVisLayerPiece& operator=(const CVisLayerPiece&) = delete;

    // The piece gets its type once, except for the root, which gets a new, empty layer at each
    // reset.
    void MakeLayer();
    void MakeComponent(std::unique_ptr<CVisComponent> component);

    Type GetType() const { return m_type; }

    CVisLayerPiece* GetParent() const { return m_parent; } // null for the root

    void SetParent(CVisLayerPiece* parent) { m_parent = parent; }

    CVisLayer* GetLayer() const { return m_layer.get(); } // null unless a layer

    CVisComponent* GetComponent() const { return m_component.get(); } // null unless a component

    const VisFractionRect& GetRectangle() const { return m_rectangle; }

    int32_t SaveProperties(CVisPropertyList& list) const;

    // The rows that LoadProperties reads, in the order of saving. -1 for an empty piece.
    int32_t DescribeRows(CVisRowInfoList& rows) const;
    int32_t LoadProperties(const CVisPropertyList* list);
    int32_t Resize(const OQRect& rect);

    // Draws into the buffer of the layer that holds the piece; `rect` is 0, 0, width, height of it.
    // -1 also if the piece is off in this frame.
    int32_t Draw(IVisBuffer& buffer, IVisAudioData& audio, const OQRect& rect);

    // Counts what the piece keeps, in place of what it kept before, against what the whole script
    // may. False, and the piece counts nothing, if that is too much.
    bool KeepPixels(int64_t pixels);

private:
    CVisLayerPiece& Root();
    int32_t DrawLayer(IVisBuffer& buffer, IVisAudioData& audio, const OQRect& rect);
    void CompileOnEquation();
    bool IsOn(IVisAudioData& audio);
    void LoadLayerRow(const CVisPropertyRow& row);

    // The pieces of the layer count themselves out when they go, so these outlive it.
    CVisLayerPiece* m_parent;
    int64_t m_keptPixels = 0;
    int64_t m_scriptPixels = 0; // of the root: kept by all pieces
    bool m_fits = true; // the component's pixels fit what the script may keep

    Type m_type = Type::Empty;
    std::unique_ptr<CVisLayer> m_layer;
    std::unique_ptr<CVisComponent> m_component;
    VisFractionRect m_rectangle; // of the parent's size
    CMathEvaluator m_onEquation;
    double* m_beat = nullptr; // variables of the on-equation
    double* m_impact = nullptr;
    double* m_on = nullptr;
    OQString m_onEquationText { u"on=1" };
    int32_t m_outputMode = 0;
    bool m_clearEachFrame = false;
    uint32_t m_transparentColor = 0xFFFFFFFF; // compared with all 32 bits of a pixel
};
