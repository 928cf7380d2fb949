#pragma once

#include <string>
#include <string_view>

namespace pxvis::os {

// A new file beside the one it is to become, hidden, under a name that nothing else has. Goes away
// with the object unless it has been kept.
class PartFile
{
public:
    explicit PartFile(const std::string& target); // UTF-8
    ~PartFile();
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    bool IsOpen() const { return m_file >= 0; }

    bool Write(std::string_view bytes);

    // Gives the file its name, in place of what stands there. Nothing is written afterwards. On
    // failure the file is gone and what stood there is as it was.
    bool KeepAs(const std::string& target);

private:
    std::string m_path;
    int m_file = -1;
};

}
