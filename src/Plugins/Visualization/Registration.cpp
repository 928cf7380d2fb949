#include "Plugins/Visualization/Registration.h"

#include "Plugins/Visualization/MakeVisualization.h"
#include "foundation/IOQTools.h"
#include "foundation/OQSiblingModules.h"
#include "foundation/OQString.h"
#include "os/ModulePath.h"

#include <pxvis/IOQVisualization.h>
#include <pxvis/SysString.h>

namespace {

constexpr const OQChar* displayKey = u"Plugins\\Display";

IOQSettings* Settings()
{
    IOQTools* tools = OQSiblingModules::Get().Tools();
    return tools ? tools->GetSettings(1) : nullptr;
}

OQString DisplayName(IOQVisualization& visualization)
{
    const std::unique_ptr<char16_t, decltype(&SysFreeString)> name(
        visualization.GetProperty(u"Display Name"), SysFreeString);
    return name.get();
}

void Remove(const OQString& name)
{
    IOQSettings* settings = Settings();
    for (const OQSettingsScope scope : { OQSettingsMachine, OQSettingsUser }) {
        const std::unique_ptr<IOQSettingsKey> key(
            settings ? settings->OpenKey(displayKey, scope, false) : nullptr);
        if (key)
            key->DeleteKey(name.GetText());
    }
}

void Enter(const OQString& name, int index)
{
    IOQSettings* settings = Settings();
    const OQString path = OQString(displayKey) + u"\\" + name;
    const std::unique_ptr<IOQSettingsKey> key(
        settings ? settings->OpenKey(path.GetText(), OQSettingsMachine, true) : nullptr);
    if (!key)
        return;
    const OQString library = OQString::FromUtf8(pxvis::os::ModulePath());
    key->ClearValues();
    key->SetInt(u"IVersion", 3);
    key->SetString(u"Company", u"The pxvis authors");
    key->SetString(u"Path", library.GetText());
    key->SetInt(u"Index", index);
    key->SetString(u"Version", u"1.0.1");
    key->SetString(u"URL", u"");
    key->SetString(u"Copyright", u"Copyright the pxvis authors");
    key->SetString(u"Description", u"Music made visible: 2D scripts, drawn in software");
}

}

void RegisterVisualizations(bool enter)
{
    constexpr int leastCount = 10; // gaps below are passed over
    std::unique_ptr<IOQVisualization> previous; // goes once the next one is there
    for (int index = 0;; ++index) {
        std::unique_ptr<IOQVisualization> visualization = MakeVisualization(index, nullptr);
        if (!visualization && index >= leastCount)
            return;
        previous = std::move(visualization);
        const OQString name = previous ? DisplayName(*previous) : OQString();
        if (name.IsEmpty())
            continue;
        if (enter)
            Enter(name, index);
        else
            Remove(name);
    }
}
