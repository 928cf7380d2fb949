#include "siblings/tools/CSettingsKey.h"

#include "foundation/IOQDllString.h"
#include "foundation/OQCharacters.h"
#include "foundation/OQNumberText.h"

using pxvis::tools::SettingsDocument;

namespace {

// Nothing crosses the module's border: without memory an operation fails.
template <class Result, class Operation>
Result Guard(Result failure, Operation operation) noexcept
{
    try {
        return operation();
    } catch (...) {
        return failure;
    }
}

bool IsName(const OQChar* name)
{
    return name && *name;
}

bool BeginsNumber(const OQString& text)
{
    int at = 0;
    while (OQIsSpace(text[at]))
        ++at;
    return OQIsDigit(text[text[at] == u'-' || text[at] == u'+' ? at + 1 : at]);
}

}

CSettingsKey::CSettingsKey(std::shared_ptr<pxvis::tools::SettingsScope> scope, OQString path)
    : m_scope(std::move(scope))
    , m_path(std::move(path))
{
}

bool CSettingsKey::HasValue(const OQChar* name) const
{
    return Guard(false, [&] {
        OQString value;
        return IsName(name) && m_scope->GetValue(m_path, name, value);
    });
}

bool CSettingsKey::GetString(const OQChar* name, const OQChar* fallback, IOQDllString& value) const
{
    return Guard(false, [&] {
        OQString text;
        const bool found = IsName(name) && m_scope->GetValue(m_path, name, text);
        if (found)
            value.SetText(text.GetText(), text.GetLength());
        else if (fallback)
            value.SetText(fallback, -1);
        else
            value.Clear();
        return found;
    });
}

int32_t CSettingsKey::GetInt(const OQChar* name, int32_t fallback) const
{
    return Guard(fallback, [&] {
        OQString text;
        return IsName(name) && m_scope->GetValue(m_path, name, text) && BeginsNumber(text)
            ? OQTextToInt(text.GetText())
            : fallback;
    });
}

bool CSettingsKey::SetString(const OQChar* name, const OQChar* value)
{
    return Guard(false, [&] { return IsName(name) && m_scope->SetValue(m_path, name, value); });
}

bool CSettingsKey::SetInt(const OQChar* name, int32_t value)
{
    return Guard(
        false, [&] { return IsName(name) && m_scope->SetValue(m_path, name, OQIntToText(value)); });
}

bool CSettingsKey::DeleteValue(const OQChar* name)
{
    return Guard(false, [&] { return IsName(name) && m_scope->DeleteValue(m_path, name); });
}

bool CSettingsKey::ClearValues()
{
    return Guard(false, [&] { return m_scope->ClearValues(m_path); });
}

bool CSettingsKey::DeleteKey(const OQChar* name)
{
    return Guard(false, [&] {
        if (SettingsDocument::NormalPath(name).IsEmpty())
            return false;
        const OQString path = SettingsDocument::NormalPath(m_path + u"\\" + name);
        return !path.IsEmpty() && m_scope->DeleteKey(path);
    });
}

bool CSettingsKey::GetKeyName(int32_t index, IOQDllString& name) const
{
    return Guard(false, [&] {
        const std::vector<OQString> names = m_scope->GetNamesBelow(m_path);
        if (index < 0 || static_cast<size_t>(index) >= names.size())
            return false;
        const OQString& found = names[static_cast<size_t>(index)];
        name.SetText(found.GetText(), found.GetLength());
        return true;
    });
}

bool CSettingsKey::GetValueName(int32_t index, IOQDllString& name) const
{
    return Guard(false, [&] {
        const OQPropertyMap values = m_scope->GetValues(m_path);
        int32_t position = 0;
        for (const auto& item : values) {
            if (position++ != index)
                continue;
            name.SetText(item.key.GetText(), item.key.GetLength());
            return true;
        }
        return false;
    });
}
