#include "Plugins/Visualization/OQVisualizationApp.h"

#include "foundation/OQSiblingModules.h"

#include <cstdlib>

namespace {

OQVisualizationApp g_visualizationApp;

}

// The foundation's tables of characters are built by the compiler, so nothing else is to be set up.
bool OQVisualizationApp::Startup()
{
    return !WantsSiblings() || LoadSiblings();
}

bool OQVisualizationApp::Shutdown()
{
    OQSiblingModules::Get().Unload();
    return true;
}

// The other modules are loaded when they are first needed. Without the tools there are no settings
// and no log, and pictures all the same: the user is told once there is a window.
bool OQVisualizationApp::LoadSiblings()
{
    OQSiblingModules::Get().Tools();
    return true;
}

bool OQVisualizationApp::Attach()
{
    static const bool attached = [] {
        if (!g_visualizationApp.OnProcessEvent(nullptr, OQProcessAttach, nullptr))
            return false;
        std::atexit([] { g_visualizationApp.OnProcessEvent(nullptr, OQProcessDetach, nullptr); });
        return true;
    }();
    return attached;
}
