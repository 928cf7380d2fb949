#include "apps/pxvis/ScriptSet.h"

#include "foundation/OQDataRoots.h"
#include "foundation/OQFileFinder.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace pxvis {

namespace {

namespace fs = std::filesystem;

constexpr size_t mostScripts = 10000;

std::vector<std::string> ScriptsBelow(const fs::path& folder)
{
    std::vector<std::string> scripts;
    OQFileFinder finder(OQString::FromUtf8(folder.string()), u"*.pxv", OQFinderDepth::TreeAndLinks);
    while (finder.Next() && scripts.size() < mostScripts) {
        std::string path = finder.GetPath().ToUtf8();
        std::error_code ignored;
        if (fs::is_regular_file(path, ignored))
            scripts.push_back(std::move(path));
    }
    std::sort(scripts.begin(), scripts.end());
    return scripts;
}

fs::path ScriptFolder(const fs::path& data)
{
    return data / "Visualizations" / "Vis Studio";
}

// A script's path below `folder`, as a person may write it: "Calm/Tide" for Calm/Tide.pxv.
OQString RelativeName(const std::string& script, const fs::path& folder)
{
    return OQString::FromUtf8(
        fs::path(script).lexically_relative(folder).replace_extension().string());
}

bool IsEqualNoCase(const OQString& a, const OQString& b)
{
    return a.CompareNoCase(b) == 0;
}

// The first script in `folder` or below that has the name, without its folder if need be. One that
// is written with the same capitals goes before others. Empty if there is none.
std::string FindNamed(const OQString& name, const fs::path& folder)
{
    std::string like;
    for (const std::string& script : ScriptsBelow(folder)) {
        const OQString relative = RelativeName(script, folder);
        const OQString stem = OQString::FromUtf8(fs::path(script).stem().string());
        if (relative == name || stem == name)
            return script;
        if (like.empty() && (IsEqualNoCase(relative, name) || IsEqualNoCase(stem, name)))
            like = script;
    }
    return like;
}

// All scripts that can be named whose folder's name is this one.
std::vector<std::string> FindMood(const OQString& name)
{
    std::vector<std::string> scripts;
    for (const OQDataFile& file : OQDataRoots::Get().List(OQDataRoots::scripts, u"*.pxv")) {
        if (file.relative.StartsWithNoCase(name + u"/"))
            scripts.push_back(file.path.ToUtf8());
    }
    return scripts;
}

}

std::vector<std::string> FindScripts(const std::string& name, std::string& error)
{
    const OQDataRoots roots = OQDataRoots::Get();
    const fs::path shipped = ScriptFolder(roots.shipped.ToUtf8());
    if (name.empty()) {
        auto scripts = ScriptsBelow(shipped);
        if (scripts.empty())
            error = shipped.string() + ": holds no scripts";
        return scripts;
    }
    std::error_code ignored;
    if (fs::is_directory(name, ignored)) {
        auto scripts = ScriptsBelow(name);
        if (scripts.empty())
            error = name + ": holds no scripts (*.pxv)";
        return scripts;
    }
    if (fs::exists(name, ignored))
        return { name };

    std::string wanted = name;
    std::replace(wanted.begin(), wanted.end(), '\\', '/');
    while (wanted.size() > 1 && wanted.back() == '/')
        wanted.pop_back();
    OQString script = OQString::FromUtf8(wanted);
    constexpr int32_t ending = 4; // ".pxv"
    if (script.GetLength() > ending && IsEqualNoCase(script.Right(ending), u".pxv"))
        script = script.Left(script.GetLength() - ending);
    const fs::path user = roots.user.IsEmpty() ? fs::path() : ScriptFolder(roots.user.ToUtf8());
    for (const fs::path& folder : { user, shipped }) {
        if (std::string found = FindNamed(script, folder); !found.empty())
            return { std::move(found) };
    }
    auto scripts = FindMood(OQString::FromUtf8(wanted));
    if (scripts.empty())
        error = name + ": no such script; pxvis list scripts tells the names";
    return scripts;
}

std::string FindScript(const std::string& name, std::string& error)
{
    std::error_code ignored;
    if (fs::is_directory(name, ignored)) {
        error = name + ": is a folder, not a script";
        return {};
    }
    const auto scripts = FindScripts(name, error);
    if (scripts.size() > 1)
        error = name + ": stands for " + std::to_string(scripts.size()) + " scripts, not for one";
    return scripts.size() == 1 ? scripts[0] : std::string();
}

}
