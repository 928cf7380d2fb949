#include "Plugins/Visualization/OQVisualizationBase.h"

#include "Plugins/Visualization/VisualizationGuard.h"
#include "Plugins/Visualization/VisualizationSettings.h"
#include "foundation/OQFolders.h"
#include "foundation/OQNumberText.h"
#include "foundation/OQStringArray.h"
#include "toolkit/OQToolkit.h"

#include <pxvis/SysString.h>

#include <algorithm>

OQVisualizationBase::OQVisualizationBase(IOQVisualizationHost* host)
    : m_host(host)
{
}

OQVisualizationBase::~OQVisualizationBase() = default;

uintptr_t OQVisualizationBase::CreateWnd(uintptr_t parent, int32_t flags)
{
    m_parentWindow = parent;
    m_flags = flags;
    return 0;
}

char16_t* OQVisualizationBase::GetProperty(const char16_t* name)
{
    return GuardedFromHost<char16_t*>(u"OQVisualizationBase::GetProperty", nullptr,
        [&] { return SysAllocString(PropertyText(OQString(name)).GetText()); });
}

OQString OQVisualizationBase::PropertyText(const OQString& name)
{
    if (name.CompareNoCase(u"Version") == 0)
        return u"3";
    if (name.CompareNoCase(u"Display Name") == 0)
        return GetName();
    if (name.CompareNoCase(u"Script File") == 0)
        return GetScriptFile();
    if (name.CompareNoCase(u"Script Fault") == 0)
        return GetScriptFault();
    const bool isCurrent = name.CompareNoCase(u"Current Mode") == 0;
    if (!isCurrent && name.CompareNoCase(u"Modes") != 0)
        return {};
    OQStringArray modes;
    int32_t current = -1;
    GetModes(&modes, &current);
    if (!isCurrent)
        return modes.Join(u"|");
    return current >= 0 && current < modes.GetCount() ? modes[current] : OQString();
}

bool OQVisualizationBase::SetProperty(const char16_t* name, const char16_t* value)
{
    return GuardedFromHost(u"OQVisualizationBase::SetProperty", false, [&] {
        const OQString property(name);
        if (property.CompareNoCase(u"Current Mode") == 0)
            return SetMode(value);
        if (property.CompareNoCase(u"Script File") == 0)
            return SetScriptFile(value);
        if (property.CompareNoCase(u"Process Events") != 0)
            return false;
        constexpr int32_t mostMilliseconds = 1000;
        OQToolkit::Get().ProcessEvents(std::clamp(OQTextToInt(value), 0, mostMilliseconds));
        return true;
    });
}

IOQHostConnection* OQVisualizationBase::GetHostConnection()
{
    if (!m_connection && m_host)
        m_connection.reset(m_host->Connect(this));
    return m_connection.get();
}

OQString OQVisualizationBase::GetHostProperty(const OQChar* name)
{
    IOQHostConnection* connection = GetHostConnection();
    const std::unique_ptr<char16_t, decltype(&SysFreeString)> text(
        connection ? connection->GetProperty(name) : nullptr, SysFreeString);
    return text.get();
}

bool OQVisualizationBase::HasFileChanged()
{
    const int32_t counter = OQTextToInt(GetHostProperty(u"File Change Counter").GetText());
    if (counter == m_fileChangeCounter)
        return false;
    m_fileChangeCounter = counter;
    return true;
}

OQString OQVisualizationBase::GetPluginDataFolder()
{
    return OQFolders::GetDataFolder() + u"Visualizations/" + GetName() + u"/";
}

OQString OQVisualizationBase::SettingsPath()
{
    return OQString(u"Plugins\\Display\\") + GetName();
}

OQString OQVisualizationBase::ReadSetting(const OQChar* name, const OQString& fallback)
{
    return VisualizationSettings(SettingsPath()).ReadString(name, fallback);
}

void OQVisualizationBase::WriteSetting(const OQChar* name, const OQString& value)
{
    VisualizationSettings(SettingsPath()).WriteString(name, value);
}
