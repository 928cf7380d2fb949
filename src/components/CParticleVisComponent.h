#pragma once

#include "components/CFreeVisComponent.h"
#include "engine2d/CVisEquation.h"

// One disc a frame, where and in which colour its equations say.
class CParticleVisComponent final : public CFreeVisComponent
{
public:
    CParticleVisComponent();

    int32_t Draw(IVisBuffer& buffer, IVisAudioData& audio) override;
    int32_t Prepare(IVisBuffer& buffer, IVisAudioData& audio) override;

private:
    OQString m_particleEquation;
    OQString m_colorEquation;
    OQString m_blendModeText; // kept as it is written, for saving

    CVisEquation m_particle;
    double* m_distance = nullptr;
    double* m_direction = nullptr;
    double* m_size = nullptr;
    CVisEquation m_color;
    double* m_red = nullptr; // 0 to 1
    double* m_green = nullptr;
    double* m_blue = nullptr;
    int32_t m_blendMode = 0;
};
