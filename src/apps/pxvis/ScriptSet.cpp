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

// "Calm/Tide" for the file Calm/Tide.pxv below `folder`.
std::string RelativeName(const std::string& script, const fs::path& folder)
{
    return fs::path(script).lexically_relative(folder).replace_extension().string();
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
    const fs::path user = roots.user.IsEmpty() ? fs::path() : ScriptFolder(roots.user.ToUtf8());
    for (const fs::path& folder : { user, shipped }) {
        for (const std::string& script : ScriptsBelow(folder)) {
            if (RelativeName(script, folder) == wanted || fs::path(script).stem() == wanted)
                return { script };
        }
    }
    error = name + ": no such script";
    return {};
}

}
