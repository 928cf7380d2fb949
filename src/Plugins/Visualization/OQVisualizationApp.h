#pragma once

#include "foundation/OQApp.h"

// The visualization library's application object. One lives in the module, from its loading on; it
// does nothing until the library is first called.
class OQVisualizationApp : public OQDllApp
{
public:
    bool Startup() override;

    // Unloads the siblings: what they made must be gone.
    bool Shutdown() override;

    bool LoadSiblings() override;

    // At the start of every export. The first call attaches the process to the module's object,
    // and the process's end detaches it; all give the first one's result. Not done when the
    // library is loaded, since other libraries can't be loaded safely there.
    static bool Attach();
};
