#include "siblings/tools/CLog.h"

#include "foundation/OQFormat.h"
#include "os/UserFolders.h"
#include "siblings/tools/HarmlessText.h"
#include "siblings/tools/LogOutput.h"

#include <algorithm>
#include <string_view>

using pxvis::os::EnvironmentValue;
using pxvis::tools::LogOutput;

namespace {

int32_t LevelFrom(std::string_view text, int32_t fallback)
{
    constexpr std::string_view names[] = { "off", "error", "warning", "info", "debug" };
    for (int32_t level = 0; level <= OQLogDebug; ++level) {
        if (text == names[level] || text == std::to_string(level))
            return level;
    }
    return fallback;
}

}

CLog::CLog() = default;
CLog::~CLog() = default;

void CLog::Open(int32_t level)
{
    const int32_t fileLevel
        = LevelFrom(EnvironmentValue("PXVIS_LOG_LEVEL"), std::clamp<int32_t>(level, 0, OQLogDebug));
    constexpr std::string_view standardError = "stderr";
    const std::string target = EnvironmentValue("PXVIS_LOG");
    int32_t errorLevel = 0;
    if (target == standardError)
        errorLevel = fileLevel;
    else if (target.starts_with("stderr:"))
        errorLevel
            = LevelFrom(std::string_view(target).substr(standardError.size() + 1), fileLevel);
    const std::lock_guard lock(m_lock);
    m_fileLevel = fileLevel;
    m_errorLevel = errorLevel;
}

void CLog::Write(int32_t level, const OQChar* scope, const OQChar* text,
    const OQFormatArgument* arguments, int32_t count)
{
    level = std::max<int32_t>(level, OQLogError);
    const bool toFile = level <= m_fileLevel;
    const bool toError = level <= m_errorLevel;
    if (!toFile && !toError)
        return;
    try {
        OQString line = OQString(scope) + u": "
            + OQFormat(text, arguments, arguments && count > 0 ? static_cast<size_t>(count) : 0);
        while (line.EndsWith(u"\r") || line.EndsWith(u"\n")) // the log has line ends of its own
            line.Delete(line.GetLength() - 1);
        const std::string harmless = pxvis::tools::HarmlessText(line);
        const std::lock_guard lock(m_lock);
        if (!m_isOpen) {
            m_isOpen = true; // a folder that refuses once isn't asked again for every line
            const std::string state = pxvis::os::UserFolder("XDG_STATE_HOME", ".local/state");
            m_output = std::make_unique<LogOutput>(state.empty() ? state : state + "/pxvis");
        }
        if (m_output)
            m_output->Write(level, harmless, toFile, toError);
    } catch (...) {
        // A log that fails is no reason for anything else to fail.
    }
}

bool CLog::IsOn(int32_t level) const
{
    level = std::max<int32_t>(level, OQLogError);
    return level <= m_fileLevel || level <= m_errorLevel;
}

void CLog::Flush()
{
    const std::lock_guard lock(m_lock);
    if (m_output)
        m_output->Flush();
}

void CLog::Close()
{
    const std::lock_guard lock(m_lock);
    m_output.reset();
    m_isOpen = false;
}
