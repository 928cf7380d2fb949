#include "Plugins/Visualization/VisualizationSettings.h"

#include "foundation/IOQTools.h"
#include "foundation/OQDllString.h"
#include "foundation/OQSiblingModules.h"

#include <memory>

namespace {

std::unique_ptr<IOQSettingsKey> OpenKey(const OQString& path, bool create)
{
    IOQTools* tools = OQSiblingModules::Get().Tools();
    IOQSettings* settings = tools ? tools->GetSettings(1) : nullptr;
    return std::unique_ptr<IOQSettingsKey>(
        settings ? settings->OpenKey(path.GetText(), OQSettingsUser, create) : nullptr);
}

}

OQString VisualizationSettings::ReadString(const OQChar* name, const OQString& fallback) const
{
    const auto key = OpenKey(m_path, false);
    if (!key)
        return fallback;
    OQString text;
    OQDllString value(text);
    key->GetString(name, fallback.GetText(), value);
    return text;
}

int32_t VisualizationSettings::ReadInt(const OQChar* name, int32_t fallback) const
{
    const auto key = OpenKey(m_path, false);
    return key ? key->GetInt(name, fallback) : fallback;
}

bool VisualizationSettings::WriteString(const OQChar* name, const OQString& value) const
{
    const auto key = OpenKey(m_path, true);
    return key && key->SetString(name, value.GetText());
}

bool VisualizationSettings::WriteInt(const OQChar* name, int32_t value) const
{
    const auto key = OpenKey(m_path, true);
    return key && key->SetInt(name, value);
}
