#pragma once

#include "components/CFeedbackVisComponent.h"
#include "components/CSuperTransformMap.h"
#include "foundation/OQStringArray.h"

namespace pxvis::kernels {
struct SuperTransformPass;
}

// Feedback through one of a list of maps: an equation of its own says when to go on to another one,
// picked at random. Rotation, zoom and scroll are applied while the map is read.
class CSuperTransformVisComponent final : public CFeedbackVisComponent
{
public:
    CSuperTransformVisComponent();

    int32_t LoadProperties(const CVisPropertyList* list) override;
    int32_t Draw(IVisBuffer& buffer, IVisAudioData& audio) override;
    int32_t Prepare(IVisBuffer& buffer, IVisAudioData& audio) override;
    int64_t KeptPixels() const override;

private:
    struct MoveEquation
    {
        CBeatEquation equation;
        double* x = nullptr;
        double* y = nullptr;

        void Compile(const OQString& text, const CBeatVariables& beat);
    };

    bool IsChangeDue();
    void BuildNextMap();
    void PickNextTransform();
    void RunMoves(pxvis::kernels::SuperTransformPass& pass);

    OQString m_transformEquation; // the list, separated by "|"
    OQString m_zoomEquation;
    OQString m_scrollEquation;
    OQString m_rotateEquation;
    OQString m_transformChangeEquation;

    OQStringArray m_transforms;
    int32_t m_nextTransform = 0;
    CSuperTransformMap m_map;

    CBeatEquation m_transform;
    MoveEquation m_zoom;
    MoveEquation m_scroll;
    CBeatEquation m_rotate;
    double* m_angle = nullptr; // of the rotation, in radians
    CBeatEquation m_change;
    double* m_changeNow = nullptr; // 1.0 or more
};
