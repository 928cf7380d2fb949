#pragma once

#include <memory>

class IOQVisualization;
class IOQVisualizationHost;

// The visualization of that number, for a host that may be null and is not called yet; null if
// there is none.
std::unique_ptr<IOQVisualization> MakeVisualization(int index, IOQVisualizationHost* host);
