#pragma once

#include "foundation/OQLog.h"
#include "foundation/OQTimer.h"

// Logs when a scope is entered and left, how long that took and, if one was set, its result. Lies
// on the stack; does nothing if the log is off for its level when it is made.
class OQScopeLog
{
public:
    OQScopeLog(OQLogLevel level, const OQChar* scope) noexcept; // the text outlives it
    ~OQScopeLog();
    OQScopeLog(const OQScopeLog&) = delete;
    OQScopeLog& operator=(const OQScopeLog&) = delete;

    void SetResult(int32_t result) { m_result = result; }

private:
    static constexpr int32_t NoResult = static_cast<int32_t>(0x8A33F231);

    const OQLogLevel m_level;
    const OQChar* const m_scope;
    OQTimer m_timer;
    int32_t m_result = NoResult;
    const bool m_isOn;
};
