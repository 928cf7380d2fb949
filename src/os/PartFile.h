#pragma once

#include "os/Descriptor.h"

#include <string>
#include <string_view>

namespace pxvis::os {

// A new file beside the one it is to become, hidden. Goes away with the object unless it has been
// kept. What fails leaves the reason in errno.
class PartFile
{
public:
    // `name`, without a folder: what a file of that name holds is lost; empty: one that nothing
    // else has. `mode`: permissions, less the process's mask.
    explicit PartFile(
        const std::string& target, const std::string& name = {}, unsigned mode = 0666);
    ~PartFile();
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    bool IsOpen() const { return m_file.IsOpen(); }

    // For what the system is to do with the file; stays ours to close.
    const Descriptor& File() const { return m_file; }

    bool Write(std::string_view bytes) const { return m_file.Write(bytes); }

    // Waits until what was written is on the disk.
    bool Sync() const;

    // Gives the file its name, in place of what stands there. Nothing is written afterwards. On
    // failure the file is gone and what stood there is as it was.
    bool KeepAs(const std::string& target);

private:
    std::string m_path;
    Descriptor m_file;
};

}
