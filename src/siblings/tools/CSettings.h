#pragma once

#include "foundation/IOQTools.h"
#include "siblings/tools/SettingsScope.h"

#include <memory>
#include <mutex>

// The user's settings are $XDG_CONFIG_HOME/pxvis/settings.xml (.config in the home without that
// variable), the machine's /etc/xdg/pxvis/settings.xml, for which machine.xml beside the user's
// stands in. $PXVIS_MACHINE_FOLDER takes the place of /etc/xdg/pxvis, so that tests and packages
// leave the system alone. Looked up at the first use after a start.
class CSettings final : public IOQSettings
{
public:
    explicit CSettings(IOQLog& log)
        : m_log(log)
    {
    }

    IOQSettingsKey* OpenKey(const OQChar* path, int32_t scope, bool create) override;
    int32_t GetFault(int32_t scope, IOQDllString& file) override;

    // Keys that are open go on with the files that they have.
    void Close();

private:
    std::shared_ptr<pxvis::tools::SettingsScope> Scope(int32_t scope);

    IOQLog& m_log;
    std::mutex m_lock; // of the scopes
    std::shared_ptr<pxvis::tools::SettingsScope> m_user;
    std::shared_ptr<pxvis::tools::SettingsScope> m_machine;
};
