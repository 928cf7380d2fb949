#include "Plugins/Visualization/VisScriptFolder.h"

#include "foundation/IOQTools.h"
#include "foundation/OQFileFinder.h"
#include "foundation/OQFormat.h"
#include "foundation/OQMap.h"
#include "foundation/OQStringArraySort.h"
#include "foundation/OQTranslate.h"

#include <algorithm>

namespace {

constexpr const OQChar* scriptFolder = OQDataRoots::scripts;
constexpr const OQChar* extension = u".pxv";
constexpr int32_t extensionLength = 4;
constexpr const OQChar* cycleAll = u"Cycle All";

bool IsEqualNoCase(const OQString& a, const OQString& b)
{
    return a.CompareNoCase(b) == 0;
}

// Modes are told apart by "|" in lists and by "\" in folders. A name that isn't UTF-8 leads back to
// no file.
bool CanBeMode(const OQString& relative)
{
    constexpr OQChar replacement = u'\xFFFD';
    return relative.Find(u'|') < 0 && relative.Find(u'\\') < 0 && relative.Find(replacement) < 0;
}

// The deepest first, those of one depth as people sort them.
void SortByDepth(OQStringArray& paths)
{
    constexpr int deepest = 99999;
    const OQStringArraySort sort(OQTextIgnoreCase);
    sort.Sort(paths);
    for (OQString& path : paths) {
        const auto depth
            = static_cast<int>(std::count(path.View().begin(), path.View().end(), u'\\'));
        path = OQFormat(u"%05d|%s", { deepest - depth, path });
    }
    sort.Sort(paths);
    for (OQString& path : paths)
        path = path.Mid(path.Find(u'|') + 1);
}

bool LeadsOut(const OQString& relative)
{
    OQStringArray parts;
    relative.Split(u'/', parts);
    return relative.StartsWith(u"/") || parts.Find(u"..") >= 0;
}

// Cuts the tail off; false if the text doesn't end so.
bool CutTailNoCase(OQString& text, const OQString& tail)
{
    if (!IsEqualNoCase(text.Right(tail.GetLength()), tail))
        return false;
    text = text.Left(text.GetLength() - tail.GetLength());
    return true;
}

}

VisScriptFolder::VisScriptFolder()
    : VisScriptFolder(OQDataRoots::Get())
{
}

VisScriptFolder::VisScriptFolder(OQDataRoots roots)
    : m_roots(std::move(roots))
    , m_folder((m_roots.user.IsEmpty() ? m_roots.shipped : m_roots.user) + scriptFolder)
{
}

OQStringArray VisScriptFolder::ListRelative() const
{
    OQStringArray names;
    for (const OQDataFile& file : m_roots.List(scriptFolder, u"*.pxv")) {
        if (CanBeMode(file.relative))
            names.Add(file.relative);
    }
    return names;
}

OQStringArray VisScriptFolder::ListModes(const OQString& currentPath, int32_t& current) const
{
    OQStringArray paths = ListRelative();
    for (OQString& path : paths)
        path.Replace(u'/', u'\\');
    SortByDepth(paths);

    OQString currentName;
    if (TakeRelative(currentPath, currentName))
        currentName.Replace(u'/', u'\\');
    else
        currentName.Clear(); // no mode of ours
    const OQString all = OQTranslated(cycleAll);
    OQStringArray modes;
    current = -1;
    const auto add = [&](const OQString& mode, const OQString& name) {
        // Scripts are found whatever the case, but of two the one that is written so.
        if (currentName == name || (current < 0 && IsEqualNoCase(currentName, name)))
            current = modes.GetCount();
        modes.Add(mode);
    };
    add(all, allNames);
    OQMap<OQString, bool> folders;
    for (const OQString& path : paths) {
        for (int32_t end = path.Find(u'\\'); end >= 0; end = path.Find(u'\\', end + 1)) {
            const OQString folder = path.Left(end + 1);
            if (folders.Find(folder))
                continue;
            folders.Set(folder, true);
            add(folder + all, folder + allNames);
        }
        add(path.Left(path.GetLength() - extensionLength), path);
    }
    return modes;
}

OQString VisScriptFolder::GetModePath(const OQString& mode) const
{
    OQString relative = mode;
    if (CutTailNoCase(relative, cycleAll) || CutTailNoCase(relative, OQTranslated(cycleAll)))
        relative += allNames;
    else
        relative += extension;
    relative.Replace(u'\\', u'/');
    return m_folder + relative;
}

bool VisScriptFolder::TakeRelative(OQString path, OQString& relative) const
{
    path.Replace(u'\\', u'/');
    for (const OQString& folder : { m_folder, m_roots.shipped + scriptFolder }) {
        if (path.StartsWith(folder)) {
            relative = path.Mid(folder.GetLength());
            return true;
        }
    }
    return false;
}

OQString VisScriptFolder::FindOne(const OQString& relative) const
{
    if (LeadsOut(relative))
        return {};
    if (OQString file = m_roots.FindFile(scriptFolder + relative); !file.IsEmpty())
        return file;
    for (const OQDataFile& file : m_roots.List(scriptFolder, u"*.pxv")) {
        if (IsEqualNoCase(file.relative, relative))
            return file.path;
    }
    return m_folder + relative; // one that appears later is read then
}

OQStringArray VisScriptFolder::FindScripts(const OQString& path) const
{
    OQString relative;
    const bool isOurs = TakeRelative(path, relative);
    OQString native = path;
    native.Replace(u'\\', u'/');
    const int32_t name = native.ReverseFind(u'/') + 1;
    if (native.Mid(name) != allNames)
        return { isOurs ? FindOne(relative) : native };
    OQStringArray scripts;
    if (!isOurs) {
        OQFileFinder finder(native.Left(name), u"*.pxv", OQFinderDepth::TreeAndLinks);
        while (finder.Next()) {
            if (!finder.IsFolder())
                scripts.Add(finder.GetPath());
        }
        return scripts;
    }
    const OQString folder = relative.Left(relative.ReverseFind(u'/') + 1);
    if (LeadsOut(folder))
        return scripts;
    for (const OQDataFile& file : m_roots.List(scriptFolder + folder, u"*.pxv"))
        scripts.Add(file.path);
    return scripts;
}
