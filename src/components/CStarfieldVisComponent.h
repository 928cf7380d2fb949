#pragma once

#include "components/CRowVisComponent.h"
#include "kernels/DrawStars.h"

#include <vector>

// Flies through a field of stars, coloured by their depth. Hears nothing, and erases nothing: the
// layer's clearing or a Transform sees to the trails.
class CStarfieldVisComponent final : public CRowVisComponent
{
public:
    CStarfieldVisComponent();

    int32_t LoadProperties(const CVisPropertyList* list) override;
    int32_t Draw(IVisBuffer& buffer, IVisAudioData& audio) override;
    int64_t KeptPixels() const override;

private:
    void AddStars(int32_t width, int32_t height);

    int32_t m_creationDistance = 0; // depth
    int32_t m_creationOffsetScale = 0; // of the picture's size
    int32_t m_starDensity = 0; // new stars a frame are below that
    int32_t m_speed = 0; // depth a frame
    CGradientEx m_gradient; // by depth
    float m_phase = 0;

    std::vector<pxvis::kernels::Star> m_stars; // in order of birth
};
