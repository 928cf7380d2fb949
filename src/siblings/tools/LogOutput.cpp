#include "siblings/tools/LogOutput.h"

#include "foundation/IOQTools.h"
#include "os/Folder.h"
#include "os/UserFolders.h"

#include <spdlog/logger.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <sys/stat.h>

namespace pxvis::tools {

namespace {

spdlog::level::level_enum LevelOf(int32_t level)
{
    switch (level) {
    case OQLogError:
        return spdlog::level::err;
    case OQLogWarning:
        return spdlog::level::warn;
    case OQLogInfo:
        return spdlog::level::info;
    default:
        return spdlog::level::debug;
    }
}

// Opening a pipe would wait for a reader.
bool IsMissingOrRegular(const std::string& path)
{
    struct stat status
    {
    };

    return ::stat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode);
}

}

struct LogOutput::Loggers
{
    // Outside the library's registry, which ends with the process before we may.
    static std::unique_ptr<spdlog::logger> Make(spdlog::sink_ptr sink)
    {
        auto logger = std::make_unique<spdlog::logger>("pxvis", std::move(sink));
        logger->set_pattern("%Y-%m-%d %H:%M:%S.%e %P %l %v");
        logger->set_level(spdlog::level::trace);
        logger->flush_on(spdlog::level::trace);
        // By default it complains on standard error, which is the host's.
        logger->set_error_handler([](const std::string&) {});
        return logger;
    }

    std::unique_ptr<spdlog::logger> file;
    std::unique_ptr<spdlog::logger> standardError;
};

LogOutput::LogOutput(const std::string& folder)
    : m_loggers(std::make_unique<Loggers>())
{
    const std::string path = folder + "/pxvis.log";
    if (folder.empty() || !os::MakeFolders(folder, 0700) || !IsMissingOrRegular(path))
        return;
    try {
        m_loggers->file = Loggers::Make(std::make_shared<spdlog::sinks::rotating_file_sink_st>(
            path, kMaxFileBytes, kFiles - 1));
    } catch (const spdlog::spdlog_ex&) {
        m_loggers->file.reset();
    }
}

LogOutput::~LogOutput() = default;

void LogOutput::Write(int32_t level, const std::string& line, bool toFile, bool toStandardError)
{
    const spdlog::string_view_t text(line.data(), line.size());
    if (toFile && m_loggers->file)
        m_loggers->file->log(LevelOf(level), text);
    if (!toStandardError)
        return;
    if (!m_loggers->standardError)
        m_loggers->standardError = Loggers::Make(std::make_shared<spdlog::sinks::stderr_sink_st>());
    m_loggers->standardError->log(LevelOf(level), text);
}

void LogOutput::Flush()
{
    if (m_loggers->file)
        m_loggers->file->flush();
}

}
