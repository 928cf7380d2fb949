#include "components/CBlobOscilloscopeVisComponent.h"
#include "components/COscilloscopeVisComponent.h"
#include "components/CPendingVisComponent.h"
#include "components/CSpectrumAnalyzerVisComponent.h"
#include "components/CSuperScopeVisComponent.h"
#include "components/CTransformVisComponent.h"
#include "engine2d/CComponentManager.h"

// The numbers are the positions in the registry.
std::unique_ptr<CVisComponent> CreateVisComponent(int32_t index)
{
    switch (index) {
    case 0:
        return std::make_unique<CTransformVisComponent>();
    case 1: // Flush
        return std::make_unique<CPendingVisComponent>();
    case 2:
        return std::make_unique<CSpectrumAnalyzerVisComponent>();
    case 3:
        return std::make_unique<COscilloscopeVisComponent>();
    case 4: // Starfield
        return std::make_unique<CPendingVisComponent>();
    case 5: // Text
        return std::make_unique<CPendingVisComponent>();
    case 6: // Image
        return std::make_unique<CPendingVisComponent>();
    case 7:
        return std::make_unique<CBlobOscilloscopeVisComponent>();
    case 8: // Particle
        return std::make_unique<CPendingVisComponent>();
    case 9: // Dot Fountain
        return std::make_unique<CPendingVisComponent>();
    case 10: // Super Transform
        return std::make_unique<CPendingVisComponent>();
    case 11:
        return std::make_unique<CSuperScopeVisComponent>();
    case 12: // Dynamic Transform
        return std::make_unique<CPendingVisComponent>();
    default:
        return nullptr;
    }
}
