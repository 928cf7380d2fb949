#pragma once

#include "foundation/IOQTools.h"

#include <atomic>
#include <memory>
#include <mutex>

namespace pxvis::tools {
class LogOutput;
}

// Lines go to $XDG_STATE_HOME/pxvis/pxvis.log (.local/state in the home without that variable) and,
// with PXVIS_LOG=stderr or PXVIS_LOG=stderr:LEVEL in the environment, to standard error as well. A
// file that can't be written means no file. Each line is on its way to the system when Write
// returns, so nothing waits for an end of the process. The outputs open with the first line.
class CLog final : public IOQLog
{
public:
    static constexpr int32_t kDefaultLevel = OQLogWarning;

    CLog();
    ~CLog();

    void Write(int32_t level, const OQChar* scope, const OQChar* text,
        const OQFormatArgument* arguments, int32_t count) override;
    bool IsOn(int32_t level) const override;

    // The highest level of the file, from now on; 0: no line. PXVIS_LOG_LEVEL, a number or the name
    // of a level, stands in front of it.
    void Open(int32_t level);
    void Flush();
    void Close();

private:
    std::mutex m_lock; // of the outputs
    std::unique_ptr<pxvis::tools::LogOutput> m_output;
    bool m_isOpen = false;
    std::atomic<int32_t> m_fileLevel = kDefaultLevel;
    std::atomic<int32_t> m_errorLevel = 0; // of standard error
};
