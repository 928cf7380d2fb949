#include "os/Process.h"

#include "os/File.h"

#include <cerrno>
#include <charconv>
#include <csignal>
#include <string>

namespace pxvis::os {

uint64_t ProcessStartTime()
{
    constexpr size_t most = 64 * 1024;
    constexpr int fieldsBehindName = 20; // up to the start time
    std::string fields;
    if (ReadFile("/proc/self/stat", most, fields) != FileError::None)
        return 0;
    size_t at = fields.rfind(')'); // the name of the program may hold anything
    for (int i = 0; i < fieldsBehindName && at != std::string::npos; ++i)
        at = fields.find(' ', at + 1);
    uint64_t time = 0;
    if (at != std::string::npos)
        std::from_chars(fields.data() + at + 1, fields.data() + fields.size(), time);
    return time;
}

bool ProcessExists(int64_t number)
{
    const auto process = static_cast<pid_t>(number);
    return process > 0 && process == number && (::kill(process, 0) == 0 || errno != ESRCH);
}

}
