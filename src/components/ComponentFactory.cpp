#include "components/CDotFountainVisComponent.h"
#include "components/CFlushVisComponent.h"
#include "components/CParticleVisComponent.h"
#include "components/CPendingVisComponent.h"
#include "components/CSpectrumAnalyzerVisComponent.h"
#include "components/CStarfieldVisComponent.h"
#include "components/CTransformVisComponent.h"
#include "engine2d/CComponentManager.h"

// The numbers are the positions in the registry.
std::unique_ptr<CVisComponent> CreateVisComponent(int32_t index)
{
    switch (index) {
    case 0:
        return std::make_unique<CTransformVisComponent>();
    case 1:
        return std::make_unique<CFlushVisComponent>();
    case 2:
        return std::make_unique<CSpectrumAnalyzerVisComponent>();
    case 3: // Oscilloscope
        return std::make_unique<CPendingVisComponent>();
    case 4:
        return std::make_unique<CStarfieldVisComponent>();
    case 5: // Text
        return std::make_unique<CPendingVisComponent>();
    case 6: // Image
        return std::make_unique<CPendingVisComponent>();
    case 7: // Blob Oscilloscope
        return std::make_unique<CPendingVisComponent>();
    case 8:
        return std::make_unique<CParticleVisComponent>();
    case 9:
        return std::make_unique<CDotFountainVisComponent>();
    case 10: // Super Transform
        return std::make_unique<CPendingVisComponent>();
    case 11: // Super-Scope
        return std::make_unique<CPendingVisComponent>();
    case 12: // Dynamic Transform
        return std::make_unique<CPendingVisComponent>();
    default:
        return nullptr;
    }
}
