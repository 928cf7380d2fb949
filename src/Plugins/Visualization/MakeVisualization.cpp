#include "Plugins/Visualization/MakeVisualization.h"

#include "Plugins/Visualization/C2DVisualizations.h"

// FIXME: 0 will be the page about the track, 1 the 3D scenes.
std::unique_ptr<IOQVisualization> MakeVisualization(int index, IOQVisualizationHost* host)
{
    constexpr int index2D = 2;
    if (index != index2D)
        return nullptr;
    return std::make_unique<C2DVisualizations>(host);
}
