#include "siblings/tools/CTools.h"

#include "foundation/IOQWindowServices.h"

#include <memory>
#include <new>

void CTools::Initialize(const void* parameter)
{
    const std::lock_guard lock(m_lock);
    const auto* setup = static_cast<const OQToolsSetup*>(parameter);
    m_mainThread.Open(setup);
    if (setup && !m_windows)
        m_windows = setup->windows;
    if (m_users++ > 0)
        return;
    m_displayScale.Open();
    m_theme.Open();
    m_log.Open(CLog::kDefaultLevel); // the settings may have something to tell
    m_log.Open(LogLevelSetting());
}

void CTools::Uninitialize()
{
    const std::lock_guard lock(m_lock);
    if (m_users == 0 || --m_users > 0)
        return;
    m_mainThread.Close();
    m_windows = nullptr;
    m_settings.Close();
    m_translator.Close();
    m_log.Close();
}

int32_t CTools::LogLevelSetting()
{
    const std::unique_ptr<IOQSettingsKey> key(m_settings.OpenKey(u"Log", OQSettingsUser, false));
    return key ? key->GetInt(u"Level", CLog::kDefaultLevel) : CLog::kDefaultLevel;
}

IOQTools* GetOQToolsDLL(int32_t version)
{
    // Never destroyed: threads may write to the log until the very end of the process.
    static CTools* const tools = new (std::nothrow) CTools;
    return version == IOQTools::InterfaceVersion ? tools : nullptr;
}
