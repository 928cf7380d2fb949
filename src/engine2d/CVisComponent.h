#pragma once

#include "engine2d/CVisRowInfo.h"
#include "foundation/OQGeometry.h"

#include <cstdint>

class IVisAudioData;
class IVisBuffer;

// Base of the drawing and transforming steps of a script. Owned by its piece; called on the drawing
// thread, or by an editor, always under the engine's lock. Nothing outside knows a component's
// fields: they are reached through property rows alone. Operations give 0, or -1 for a failure that
// most callers ignore. Slots: add at the end only.
class CVisComponent
{
public:
    CVisComponent() = default;
    virtual ~CVisComponent() = default;
    CVisComponent(const CVisComponent&) = delete;
    CVisComponent& operator=(const CVisComponent&) = delete;

    // Appends the component's rows, in an order of its own that never changes.
    virtual int32_t SaveProperties(CVisPropertyList& list);

    // Sets every property to its default, then reads the rows whose names it knows.
    virtual int32_t LoadProperties(const CVisPropertyList* list);

    // Picks random entries of the preset maps. The engine itself never calls it.
    virtual int32_t Randomize();

    // Draws one step into the layer's buffer.
    virtual int32_t Draw(IVisBuffer& buffer, IVisAudioData& audio) = 0;

    // `rect` is 0, 0, width, height of the layer.
    virtual int32_t SetRect(const OQRect& rect);

    virtual int32_t Invalidate();

    // Works out pixel positions and compiles equations.
    virtual int32_t Prepare(IVisBuffer& buffer, IVisAudioData& audio);

    // Pixels, 4 bytes each, that the component keeps for its rectangle beside the layer's images.
    virtual int64_t KeptPixels() const;

    // Appends what is to be known of the component's rows, in the order of saving.
    virtual int32_t DescribeRows(CVisRowInfoList& rows) const;

    // Filled by CComponentManager::MakeComponent.
    char guid[256] = {};
    char name[256] = {};

protected:
    OQRect m_rect;
    bool m_prepared = false; // false: the rectangle or a property changed since the last Prepare
};
