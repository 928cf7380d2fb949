#include "os/ProcessArguments.h"

#include "os/File.h"

namespace pxvis::os {

std::vector<std::string> ProcessArguments()
{
    constexpr size_t most = 16 << 20; // bytes; the system allows less
    std::vector<std::string> arguments;
    std::string bytes; // each ends with a zero
    if (ReadFile("/proc/self/cmdline", most, bytes) != FileError::None)
        return arguments;
    for (size_t at = 0; at < bytes.size(); at += arguments.back().size() + 1)
        arguments.emplace_back(bytes.c_str() + at);
    return arguments;
}

}
