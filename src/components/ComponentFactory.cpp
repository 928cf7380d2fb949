#include "components/CPendingVisComponent.h"
#include "components/CSpectrumAnalyzerVisComponent.h"
#include "components/CTransformVisComponent.h"
#include "engine2d/CComponentManager.h"

// The numbers are the positions in the registry.
std::unique_ptr<CVisComponent> CreateVisComponent(int32_t index)
{
    switch (index) {
    case 0:
        return std::make_unique<CTransformVisComponent>();
    case 2:
        return std::make_unique<CSpectrumAnalyzerVisComponent>();
    case 1:
    case 3:
    case 4:
    case 5:
    case 6:
    case 7:
    case 8:
    case 9:
    case 10:
    case 11:
    case 12:
        return std::make_unique<CPendingVisComponent>();
    default:
        return nullptr;
    }
}
