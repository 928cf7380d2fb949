#include "components/CBlobOscilloscopeVisComponent.h"
#include "components/CDotFountainVisComponent.h"
#include "components/CDynamicTransformVisComponent.h"
#include "components/CFlushVisComponent.h"
#include "components/CImageVisComponent.h"
#include "components/COscilloscopeVisComponent.h"
#include "components/CParticleVisComponent.h"
#include "components/CSpectrumAnalyzerVisComponent.h"
#include "components/CStarfieldVisComponent.h"
#include "components/CSuperScopeVisComponent.h"
#include "components/CSuperTransformVisComponent.h"
#include "components/CTextVisComponent.h"
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
    case 3:
        return std::make_unique<COscilloscopeVisComponent>();
    case 4:
        return std::make_unique<CStarfieldVisComponent>();
    case 5:
        return std::make_unique<CTextVisComponent>();
    case 6:
        return std::make_unique<CImageVisComponent>();
    case 7:
        return std::make_unique<CBlobOscilloscopeVisComponent>();
    case 8:
        return std::make_unique<CParticleVisComponent>();
    case 9:
        return std::make_unique<CDotFountainVisComponent>();
    case 10:
        return std::make_unique<CSuperTransformVisComponent>();
    case 11:
        return std::make_unique<CSuperScopeVisComponent>();
    case 12:
        return std::make_unique<CDynamicTransformVisComponent>();
    default:
        return nullptr;
    }
}
