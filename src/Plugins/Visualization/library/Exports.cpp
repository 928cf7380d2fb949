#include "Plugins/Visualization/MakeVisualization.h"
#include "Plugins/Visualization/OQVisualizationApp.h"
#include "Plugins/Visualization/Registration.h"
#include "Plugins/Visualization/VisualizationGuard.h"

#include <pxvis/IOQVisualization.h>

#define PXVIS_EXPORT __attribute__((visibility("default")))

namespace {

int32_t Register(bool enter)
{
    GuardedFromHost(u"DllRegisterServer", false, [&] {
        if (OQVisualizationApp::Attach())
            RegisterVisualizations(enter);
        return true;
    });
    return 0;
}

}

PXVIS_EXPORT IOQVisualization* CreateVisualization(int index, IOQVisualizationHost* host)
{
    return GuardedFromHost<IOQVisualization*>(
        u"CreateVisualization", nullptr, [&]() -> IOQVisualization* {
            return OQVisualizationApp::Attach() ? MakeVisualization(index, host).release()
                                                : nullptr;
        });
}

PXVIS_EXPORT int32_t DllRegisterServer()
{
    return Register(true);
}

PXVIS_EXPORT int32_t DllUnregisterServer()
{
    return Register(false);
}
