#include "siblings/tools/SettingsScope.h"

#include "foundation/IOQTools.h"

namespace pxvis::tools {

namespace {

using Outcome = SettingsFile::Outcome;

bool HasValue(const SettingsDocument& document, const OQString& path, const OQString& name)
{
    const SettingsDocument::Key* key = document.Find(path);
    return key && key->values.Has(name);
}

Outcome RemoveValue(SettingsDocument& document, const OQString& path, const OQString& name)
{
    if (!HasValue(document, path, name))
        return Outcome::Unchanged;
    document.Find(path)->values.Remove(name);
    return Outcome::Changed;
}

}

SettingsScope::SettingsScope(std::vector<std::unique_ptr<SettingsFile>> files)
    : m_files(std::move(files))
{
}

int32_t SettingsScope::Fault(std::string& path) const
{
    path.clear();
    for (const auto& file : m_files) {
        if (const int32_t fault = file->Fault()) {
            path = file->Path();
            return fault;
        }
    }
    return OQSettingsWhole;
}

SettingsScope::Documents SettingsScope::Read() const
{
    Documents documents;
    for (const auto& file : m_files)
        documents.push_back(file->Read());
    return documents;
}

bool SettingsScope::HasKey(const OQString& path) const
{
    for (const auto& document : Read()) {
        if (document->HasKey(path))
            return true;
    }
    return false;
}

bool SettingsScope::GetValue(const OQString& path, const OQString& name, OQString& value) const
{
    for (const auto& document : Read()) {
        const SettingsDocument::Key* key = document->Find(path);
        if (key && key->values.GetString(value, name, nullptr))
            return true;
    }
    return false;
}

OQPropertyMap SettingsScope::GetValues(const OQString& path) const
{
    OQPropertyMap values;
    const Documents documents = Read();
    for (auto document = documents.rbegin(); document != documents.rend(); ++document) {
        if (const SettingsDocument::Key* key = (*document)->Find(path))
            values.Merge(key->values);
    }
    return values;
}

std::vector<OQString> SettingsScope::GetNamesBelow(const OQString& path) const
{
    std::vector<OQString> names;
    for (const auto& document : Read())
        document->AddNamesBelow(path, names);
    return names;
}

SettingsFile& SettingsScope::WritableFile() const
{
    return m_files.back()->MakeWritable() ? *m_files.back() : *m_files.front();
}

bool SettingsScope::MakeKey(const OQString& path)
{
    return HasKey(path) || WritableFile().Change([&](SettingsDocument& document) {
        return document.FindOrAdd(path) ? Outcome::Changed : Outcome::Refused;
    });
}

bool SettingsScope::SetValue(const OQString& path, const OQString& name, const OQString& value)
{
    SettingsFile& file = WritableFile();
    const bool written = file.Change([&](SettingsDocument& document) {
        SettingsDocument::Key* key = document.FindOrAdd(path);
        if (!key)
            return Outcome::Refused;
        OQString before;
        if (key->values.GetString(before, name, nullptr) && before == value)
            return Outcome::Unchanged;
        key->values.SetString(name, value);
        return Outcome::Changed;
    });
    if (!written)
        return false;
    // What stands in front of the new value would hide it.
    for (const auto& front : m_files) {
        if (front.get() == &file)
            break;
        const bool hides = HasValue(*front->Read(), path, name);
        if (hides && !front->Change([&](SettingsDocument& document) {
                return RemoveValue(document, path, name);
            }))
            return false;
    }
    return true;
}

// `has`: there is something for `edit` to remove.
bool SettingsScope::Delete(const SettingsFile::Edit& edit, const Test& has)
{
    bool isGone = true;
    for (const auto& file : m_files) {
        if (has(*file->Read()))
            isGone = file->MakeWritable() && file->Change(edit) && isGone;
    }
    return isGone;
}

bool SettingsScope::DeleteValue(const OQString& path, const OQString& name)
{
    return Delete([&](SettingsDocument& document) { return RemoveValue(document, path, name); },
        [&](const SettingsDocument& document) { return HasValue(document, path, name); });
}

bool SettingsScope::ClearValues(const OQString& path)
{
    return Delete(
        [&](SettingsDocument& document) {
            SettingsDocument::Key* key = document.Find(path);
            if (!key || key->values.IsEmpty())
                return Outcome::Unchanged;
            key->values.Clear();
            return Outcome::Changed;
        },
        [&](const SettingsDocument& document) {
            const SettingsDocument::Key* key = document.Find(path);
            return key && !key->values.IsEmpty();
        });
}

bool SettingsScope::DeleteKey(const OQString& path)
{
    return Delete(
        [&](SettingsDocument& document) {
            return document.DeleteKey(path) ? Outcome::Changed : Outcome::Unchanged;
        },
        [&](const SettingsDocument& document) { return document.HasKey(path); });
}

}
