#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace pxvis::tools {

// Where log lines go: a file that starts afresh when it is full, with a few older ones kept, and
// standard error. Each line gets the time, the process and the level in front. One thread at a
// time; nothing is thrown but for memory.
class LogOutput
{
public:
    static constexpr size_t kMaxFileBytes = 1024 * 1024;
    static constexpr size_t kFiles = 3;

    // Makes the folder; one that can't be used, or that is empty, means no file.
    explicit LogOutput(const std::string& folder);
    ~LogOutput();
    LogOutput(const LogOutput&) = delete;
    LogOutput& operator=(const LogOutput&) = delete;

    void Write(int32_t level, const std::string& line, bool toFile, bool toStandardError);
    void Flush();

private:
    struct Loggers;

    std::unique_ptr<Loggers> m_loggers;
};

}
