#pragma once

#include "siblings/tools/SettingsFile.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace pxvis::tools {

// The settings of one scope. Those of the machine lie in the system's folder or, as far as that
// can't be written, in the user's own, whose values stand in front of the system's. Any thread.
class SettingsScope
{
public:
    // The last one is the scope's own file; those before it stand in where it can't be written, and
    // are read first.
    explicit SettingsScope(std::vector<std::unique_ptr<SettingsFile>> files);

    // Of the first file that had one, an OQSettingsFault.
    int32_t Fault(std::string& path) const;

    // All paths are normal ones, as SettingsDocument has them.
    bool HasKey(const OQString& path) const;
    bool GetValue(const OQString& path, const OQString& name, OQString& value) const;
    OQPropertyMap GetValues(const OQString& path) const;
    std::vector<OQString> GetNamesBelow(const OQString& path) const;

    // False unless it is on the disk.
    bool MakeKey(const OQString& path);
    bool SetValue(const OQString& path, const OQString& name, const OQString& value);
    // False if something of it is still there.
    bool DeleteValue(const OQString& path, const OQString& name);
    bool ClearValues(const OQString& path);
    bool DeleteKey(const OQString& path);

private:
    using Test = std::function<bool(const SettingsDocument&)>;
    using Documents = std::vector<std::shared_ptr<const SettingsDocument>>;

    Documents Read() const;
    SettingsFile& WritableFile() const;
    bool Delete(const SettingsFile::Edit& edit, const Test& has);

    std::vector<std::unique_ptr<SettingsFile>> m_files; // in the order of reading
};

}
