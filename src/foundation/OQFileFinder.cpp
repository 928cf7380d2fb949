#include "foundation/OQFileFinder.h"

#include <utility>

namespace {

constexpr size_t deepestLevel = 64;

}

OQFileFinder::OQFileFinder(
    const OQString& folder, const OQString& pattern, OQFinderDepth depth, size_t maximumEntries)
    : m_folder(folder.ToUtf8())
    , m_pattern(pattern)
    , m_depth(depth)
    , m_entriesLeft(maximumEntries)
{
    if (m_folder.empty())
        return;
    if (m_folder.back() != '/')
        m_folder += '/';
    Enter({});
}

// Each folder once: a link may lead to one above it.
void OQFileFinder::Enter(const std::string& relative)
{
    const std::string path = m_folder + relative;
    if (!m_entered.insert(pxvis::os::IdentifyFolder(path)).second)
        return;
    Level level;
    level.relative = relative;
    bool isComplete = true;
    if (m_levels.size() > deepestLevel || m_entriesLeft == 0) {
        m_isComplete = false;
        return;
    }
    if (!pxvis::os::ListFolder(path, m_entriesLeft, level.entries, isComplete))
        return;
    m_isComplete = m_isComplete && isComplete;
    m_entriesLeft -= level.entries.size();
    m_levels.push_back(std::move(level));
}

bool OQFileFinder::Next()
{
    for (;;) {
        const bool wanted = m_depth == OQFinderDepth::TreeAndLinks
            || (m_depth == OQFinderDepth::Tree && !m_entry.isLink);
        if (std::exchange(m_entry, {}).isFolder && wanted)
            Enter(m_relativeBytes + "/");
        while (!m_levels.empty() && m_levels.back().next == m_levels.back().entries.size())
            m_levels.pop_back();
        if (m_levels.empty())
            return false;
        Level& level = m_levels.back();
        m_entry = std::move(level.entries[level.next++]);
        m_relativeBytes = level.relative + m_entry.name;
        m_name = OQString::FromUtf8(m_entry.name);
        if (!Matches(m_name, m_pattern))
            continue;
        m_relative = OQString::FromUtf8(m_relativeBytes);
        m_path = OQString::FromUtf8(m_folder + m_relativeBytes);
        return true;
    }
}

// A "*" takes as little as it can; where what follows fails, the last one takes a character more.
bool OQFileFinder::Matches(const OQString& name, const OQString& pattern)
{
    if (pattern == u"*.*")
        return true;
    OQString text = name;
    OQString wanted = pattern;
    text.MakeLower();
    wanted.MakeLower();
    int at = 0;
    int in = 0;
    int star = -1;
    int starAt = 0;
    while (at < text.GetLength()) {
        if (in < wanted.GetLength() && wanted[in] == u'*') {
            star = in++;
            starAt = at;
        } else if (in < wanted.GetLength() && (wanted[in] == u'?' || wanted[in] == text[at])) {
            ++in;
            ++at;
        } else if (star >= 0) {
            in = star + 1;
            at = ++starAt;
        } else {
            return false;
        }
    }
    while (in < wanted.GetLength() && wanted[in] == u'*')
        ++in;
    return in == wanted.GetLength();
}
