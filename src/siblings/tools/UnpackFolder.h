#pragma once

#include "os/Descriptor.h"

#include <string>
#include <string_view>

namespace pxvis::tools {

// A folder that is filled in secret beside the one that it is to become. It goes with the object
// unless it has been kept. Relative paths are those that Normalize gave.
class UnpackFolder
{
public:
    static constexpr int kMaxLevels = 64;
    static constexpr size_t kMaxPath = 1024; // bytes

    // `target`, absolute, isn't there or is an empty folder.
    explicit UnpackFolder(std::string target);
    ~UnpackFolder();
    UnpackFolder(const UnpackFolder&) = delete;
    UnpackFolder& operator=(const UnpackFolder&) = delete;

    bool IsOpen() const { return m_folder.IsOpen(); }

    // The name of an archive's entry as a path below the folder, with "/" between its names and
    // none at the ends; empty for the folder itself. False for one that leads elsewhere, or that is
    // too long or too deep.
    static bool Normalize(std::string_view name, std::string& path);

    // With the folders above. `made` becomes the number of new ones.
    bool MakeFolder(const std::string& path, int& made) const;

    // A file to be written, in place of one of that name; its folder is there.
    os::Descriptor MakeFile(const std::string& path, bool isProgram) const;

    // Gives the folder its name. False, with the target as it was, if somebody was faster.
    bool Keep();

private:
    std::string m_target;
    std::string m_secret; // nobody else may look into it; empty: none
    os::Descriptor m_folder; // in there; with the permissions that it is to have
};

}
