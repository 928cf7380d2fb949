#include "apps/pxvis/ScriptSet.h"

#include "os/InstallPlaces.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace pxvis {

namespace {

namespace fs = std::filesystem;

constexpr size_t mostScripts = 10000;

std::vector<std::string> ScriptsBelow(const fs::path& folder)
{
    std::vector<std::string> scripts;
    std::error_code fault;
    for (fs::recursive_directory_iterator
             it(folder, fs::directory_options::skip_permission_denied, fault),
         end;
         !fault && it != end && scripts.size() < mostScripts; it.increment(fault)) {
        std::error_code ignored;
        if (it->path().extension() == ".pxv" && it->is_regular_file(ignored))
            scripts.push_back(it->path().string());
    }
    std::sort(scripts.begin(), scripts.end());
    return scripts;
}

fs::path UserDataFolder()
{
    if (const char* data = std::getenv("XDG_DATA_HOME"); data && *data == '/')
        return fs::path(data) / "pxvis";
    if (const char* home = std::getenv("HOME"); home && *home == '/')
        return fs::path(home) / ".local/share/pxvis";
    return {};
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
    const fs::path shipped = ScriptFolder(os::GetInstallPlaces().data);
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
    const fs::path user = UserDataFolder();
    for (const fs::path& folder : { user.empty() ? fs::path() : ScriptFolder(user), shipped }) {
        for (const std::string& script :
            folder.empty() ? std::vector<std::string>() : ScriptsBelow(folder)) {
            if (RelativeName(script, folder) == wanted || fs::path(script).stem() == wanted)
                return { script };
        }
    }
    error = name + ": no such script";
    return {};
}

}
