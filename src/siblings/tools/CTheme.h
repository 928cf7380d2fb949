#pragma once

#include "foundation/IOQTools.h"

// Dark, unless PXVIS_THEME in the environment is "light".
class CTheme final : public IOQTheme
{
public:
    uint32_t GetColor(int32_t index) const override;
    void GetDataFolder(IOQDllString& folder) const override;
    void GetProductName(IOQDllString& name) const override;

    void Open();

private:
    bool m_isLight = false;
};
