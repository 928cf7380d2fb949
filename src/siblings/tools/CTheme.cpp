#include "siblings/tools/CTheme.h"

#include "foundation/IOQDllString.h"
#include "foundation/OQString.h"
#include "os/UserFolders.h"
#include "siblings/tools/ThemeColors.h"

void CTheme::Open()
{
    m_isLight = pxvis::os::EnvironmentValue("PXVIS_THEME") == "light";
}

uint32_t CTheme::GetColor(int32_t index) const
{
    if (index < 0 || index >= OQThemeColorCount)
        return 0;
    return m_isLight ? kLightThemeColors[index] : kDarkThemeColors[index];
}

void CTheme::GetDataFolder(IOQDllString& folder) const
{
    try {
        const std::string data = pxvis::os::UserFolder("XDG_DATA_HOME", ".local/share");
        const OQString path = data.empty() ? OQString() : OQString::FromUtf8(data + "/pxvis/");
        folder.SetText(path.GetText(), path.GetLength());
    } catch (...) {
        folder.Clear();
    }
}

void CTheme::GetProductName(IOQDllString& name) const
{
    try {
        name.SetText(u"pxvis", -1);
    } catch (...) {
        name.Clear();
    }
}
