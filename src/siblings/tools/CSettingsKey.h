#pragma once

#include "foundation/IOQTools.h"
#include "foundation/OQString.h"
#include "siblings/tools/SettingsScope.h"

#include <memory>

class CSettingsKey final : public IOQSettingsKey
{
public:
    // `path` is a normal one.
    CSettingsKey(std::shared_ptr<pxvis::tools::SettingsScope> scope, OQString path);

    bool HasValue(const OQChar* name) const override;
    bool GetString(const OQChar* name, const OQChar* fallback, IOQDllString& value) const override;
    int32_t GetInt(const OQChar* name, int32_t fallback) const override;

    bool SetString(const OQChar* name, const OQChar* value) override;
    bool SetInt(const OQChar* name, int32_t value) override;
    bool DeleteValue(const OQChar* name) override;
    bool ClearValues() override;
    bool DeleteKey(const OQChar* name) override;

    bool GetKeyName(int32_t index, IOQDllString& name) const override;
    bool GetValueName(int32_t index, IOQDllString& name) const override;

private:
    std::shared_ptr<pxvis::tools::SettingsScope> m_scope;
    OQString m_path;
};
