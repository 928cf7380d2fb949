#include "siblings/tools/CSettings.h"

#include "foundation/IOQDllString.h"
#include "os/UserFolders.h"
#include "siblings/tools/CSettingsKey.h"

using pxvis::tools::SettingsDocument;
using pxvis::tools::SettingsFile;
using pxvis::tools::SettingsScope;

namespace {

constexpr const char* kFileName = "settings.xml";

std::string UserFolder()
{
    const std::string config = pxvis::os::UserFolder("XDG_CONFIG_HOME", ".config");
    return config.empty() ? config : config + "/pxvis";
}

std::string MachineFolder()
{
    std::string folder = pxvis::os::EnvironmentValue("PXVIS_MACHINE_FOLDER");
    return !folder.empty() && folder.front() == '/' ? folder : "/etc/xdg/pxvis";
}

}

std::shared_ptr<SettingsScope> CSettings::Scope(int32_t scope)
{
    const std::lock_guard lock(m_lock);
    if (!m_user) {
        std::vector<std::unique_ptr<SettingsFile>> user;
        user.push_back(std::make_unique<SettingsFile>(
            SettingsFile::Place { .folder = UserFolder(), .name = kFileName }, m_log));
        m_user = std::make_shared<SettingsScope>(std::move(user));

        std::vector<std::unique_ptr<SettingsFile>> machine;
        machine.push_back(std::make_unique<SettingsFile>(
            SettingsFile::Place { .folder = UserFolder(), .name = "machine.xml" }, m_log));
        // Everybody reads these.
        machine.push_back(
            std::make_unique<SettingsFile>(SettingsFile::Place { .folder = MachineFolder(),
                                               .name = kFileName,
                                               .folderMode = 0755,
                                               .fileMode = 0644 },
                m_log));
        m_machine = std::make_shared<SettingsScope>(std::move(machine));
    }
    return scope == OQSettingsMachine ? m_machine : m_user;
}

IOQSettingsKey* CSettings::OpenKey(const OQChar* path, int32_t scope, bool create)
{
    try {
        if (scope != OQSettingsUser && scope != OQSettingsMachine)
            return nullptr;
        const OQString normal = SettingsDocument::NormalPath(path);
        if (normal.IsEmpty())
            return nullptr;
        std::shared_ptr<SettingsScope> settings = Scope(scope);
        if (create)
            settings->MakeKey(normal); // what can't be kept is told by the writes
        else if (!settings->HasKey(normal))
            return nullptr;
        return new CSettingsKey(std::move(settings), normal);
    } catch (...) {
        return nullptr;
    }
}

int32_t CSettings::GetFault(int32_t scope, IOQDllString& file)
{
    file.Clear();
    try {
        if (scope != OQSettingsUser && scope != OQSettingsMachine)
            return OQSettingsWhole;
        std::string path;
        const int32_t fault = Scope(scope)->Fault(path);
        const OQString text = OQString::FromUtf8(path);
        file.SetText(text.GetText(), text.GetLength());
        return fault;
    } catch (...) {
        return OQSettingsWhole;
    }
}

void CSettings::Close()
{
    const std::lock_guard lock(m_lock);
    m_user.reset();
    m_machine.reset();
}
