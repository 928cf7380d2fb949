#include "Plugins/Visualization/VisScriptFault.h"

#include "engine2d/CScriptCheck.h"
#include "engine2d/VisLimits.h"
#include "foundation/OQFileSystem.h"
#include "foundation/OQNumberText.h"

namespace {

OQString FindingText(const CScriptFinding& finding)
{
    OQString text = u", line " + OQIntToText(finding.line) + u": ";
    if (!finding.component.IsEmpty())
        text += finding.component;
    if (!finding.row.IsEmpty())
        text += u" \"" + finding.row + u"\"";
    return finding.component.IsEmpty() ? text + finding.message : text + u": " + finding.message;
}

}

VisScriptFault::VisScriptFault() = default;

VisScriptFault::~VisScriptFault() = default;

OQString VisScriptFault::Tell(const OQString& path)
{
    if (path.IsEmpty())
        return {};
    const bool isThere = OQFileSystem::FileExists(path);
    const double date = isThere ? OQFileSystem::GetLastWriteTime(path) : 0;
    if (path != m_path || date != m_date) {
        m_text = isThere ? Check(path) : OQString(u": there is no such script");
        m_path = path;
        m_date = date;
    }
    return m_text.IsEmpty() ? m_text : path.Mid(path.ReverseFind(u'/') + 1) + m_text;
}

OQString VisScriptFault::Check(const OQString& path)
{
    OQString script;
    if (!OQFileSystem::ReadTextFile(path, script, VisLimits::scriptFileBytes))
        return u": can't be read, or is larger than a script may be";
    if (!m_check)
        m_check = std::make_unique<CScriptCheck>();
    const std::vector<CScriptFinding> findings = m_check->Check(script);
    if (findings.empty())
        return {};
    const OQString first = FindingText(findings.front());
    return findings.size() == 1
        ? first
        : first + u" (and " + OQIntToText(static_cast<int64_t>(findings.size()) - 1) + u" more)";
}
