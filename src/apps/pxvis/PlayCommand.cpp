#include "apps/pxvis/PlayCommand.h"

#include "apps/pxvis/CheckCommand.h"
#include "apps/pxvis/ErrorLine.h"
#include "apps/pxvis/PlayerProcess.h"
#include "apps/pxvis/ScriptSet.h"
#include "apps/pxvis/ScriptText.h"

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <ostream>
#include <sys/stat.h>
#include <utility>

namespace pxvis {

namespace {

namespace fs = std::filesystem;

constexpr int lookMs = 250;

// What tells that a file was saved; all 0 where there is none.
struct Stamp
{
    explicit Stamp(const std::string& path)
    {
        struct stat status
        {
        };

        if (stat(path.c_str(), &status) != 0)
            return;
        seconds = status.st_mtim.tv_sec;
        nanoseconds = status.st_mtim.tv_nsec;
        size = status.st_size;
        number = status.st_ino;
    }

    bool operator==(const Stamp&) const = default;

    int64_t seconds = 0;
    int64_t nanoseconds = 0;
    int64_t size = 0;
    uint64_t number = 0;
};

// Tells an author what is wrong with the script, each time it was saved.
class ScriptWatch
{
public:
    ScriptWatch(std::string script, std::ostream& errors)
        : m_script(std::move(script))
        , m_errors(errors)
        , m_checked(m_script)
        , m_seen(m_checked)
    {
        Check();
    }

    // Editors write in parts, or take the file away and put another one in its place: what isn't
    // the same at two looks isn't looked at closer.
    void Look()
    {
        const Stamp now(m_script);
        if (now == std::exchange(m_seen, now) && now != m_checked) {
            m_checked = now;
            Check();
        }
    }

private:
    void Check()
    {
        OQString text;
        std::string error;
        if (!ReadScriptText(m_script, text, error))
            PrintError(m_errors, error);
        else if (RunCheck({ .scripts = { m_script } }, m_errors, m_errors) == 0)
            m_errors << PrintableLine(m_script + ": no faults") << '\n';
        m_errors.flush();
    }

    std::string m_script;
    std::ostream& m_errors;
    Stamp m_checked;
    Stamp m_seen; // at the last look
};

bool HasDisplay()
{
    const auto isSet = [](const char* name) {
        const char* value = std::getenv(name);
        return value && *value;
    };
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY");
}

// Absolute ones, so that none is taken for an option. False, and one line.
bool FindSongs(
    const std::vector<std::string>& songs, std::vector<std::string>& paths, std::string& error)
{
    for (const std::string& song : songs) {
        std::error_code fault;
        if (!fs::exists(song, fault)) {
            error = song + ": no such file";
            return false;
        }
        paths.push_back(fs::absolute(song, fault).string());
    }
    return true;
}

}

int RunPlay(const PlayOptions& options, std::ostream& errors)
{
    std::string error;
    std::string script;
    std::vector<std::string> arguments;
    if (!options.script.empty()) {
        script = FindScript(options.script, error);
        OQString text;
        if (script.empty() || !ReadScriptText(script, text, error))
            return PrintError(errors, error);
        std::error_code fault;
        arguments = { "--script", fs::absolute(script, fault).string() };
    }
    if (!options.songs.empty())
        arguments.emplace_back("--play");
    else if (!script.empty())
        arguments.emplace_back("--listen");
    else
        arguments.emplace_back("--new"); // else it would be one that is open
    if (!FindSongs(options.songs, arguments, error))
        return PrintError(errors, error);
    const std::string program = PlayerProcess::Find();
    if (program.empty())
        return PrintError(errors, "the player, pxvis-player, isn't installed");
    if (!HasDisplay())
        return PrintError(errors, "there is no display for the player to show anything on");

    PlayerProcess player;
    if (!player.Start(program, arguments, error))
        return PrintError(errors, error);
    std::optional<ScriptWatch> watch;
    if (!script.empty())
        watch.emplace(script, errors);
    std::optional<int> status;
    while (!(status = player.Wait(watch ? lookMs : -1))) {
        if (watch)
            watch->Look();
    }
    return *status;
}

}
