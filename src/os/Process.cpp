#include "os/Process.h"

#include "os/File.h"

#include <cerrno>
#include <charconv>
#include <csignal>
#include <string>
#include <sys/auxv.h>

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

// Of the random bytes that the system gives to each program, which keep its stacks safe from
// strangers: hence no more than tells one program from another.
uint32_t ProgramNumber()
{
    constexpr size_t count = 16;
    const auto* bytes = reinterpret_cast<const unsigned char*>(::getauxval(AT_RANDOM));
    uint64_t hash = 0xCBF29CE484222325; // FNV-1a
    for (size_t i = 0; bytes && i < count; ++i)
        hash = (hash ^ bytes[i]) * 0x100000001B3;
    return bytes ? static_cast<uint32_t>(hash >> 32) : 0;
}

bool ProcessExists(int64_t number)
{
    const auto process = static_cast<pid_t>(number);
    return process > 0 && process == number && (::kill(process, 0) == 0 || errno != ESRCH);
}

}
