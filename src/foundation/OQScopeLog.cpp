#include "foundation/OQScopeLog.h"

OQScopeLog::OQScopeLog(OQLogLevel level, const OQChar* scope) noexcept
    : m_level(level)
    , m_scope(scope)
    , m_isOn(OQLogIsOn(level))
{
    if (m_isOn)
        OQLog(m_level, m_scope, u"Start");
}

OQScopeLog::~OQScopeLog()
{
    if (!m_isOn)
        return;
    const auto milliseconds = static_cast<int64_t>(m_timer.GetElapsedMs(false));
    if (m_result != NoResult)
        OQLog(m_level, m_scope, u"Finish (result: %d) (%d ms)", { m_result, milliseconds });
    else
        OQLog(m_level, m_scope, u"Finish (%d ms)", { milliseconds });
}
