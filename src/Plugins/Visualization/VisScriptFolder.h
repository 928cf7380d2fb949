#pragma once

#include "foundation/OQDataRoots.h"
#include "foundation/OQStringArray.h"

// The scripts of Vis Studio, as modes: "Calm\Harbour" is a script, "Calm\Cycle All" all scripts of
// a folder in turns, "Cycle All" all there are. A mode's path, which the settings keep, lies in the
// user's folder whether the script does or is a shipped one, so that it stays right when the
// program moves: the script is looked for when it is loaded.
class VisScriptFolder
{
public:
    VisScriptFolder();
    explicit VisScriptFolder(OQDataRoots roots);

    // The path of the mode that has all scripts.
    OQString GetAllPath() const { return m_folder + allNames; }

    // In the order of a menu. `current`: the position of the mode that has that path, or -1.
    OQStringArray ListModes(const OQString& currentPath, int32_t& current) const;

    // A name that leads out of the folder gives the path of no script.
    OQString GetModePath(const OQString& mode) const;

    // The files of a mode, the user's before shipped ones of the same name. A mode of one script
    // always has one file, which need not be there. "\" in a path counts as "/".
    OQStringArray FindScripts(const OQString& path) const;

private:
    static constexpr const OQChar* allNames = u"*.*";

    // Below the folder, with "/"; false for a path elsewhere.
    bool TakeRelative(OQString path, OQString& relative) const;
    OQStringArray ListRelative() const;
    OQString FindOne(const OQString& relative) const;

    OQDataRoots m_roots;
    OQString m_folder; // with "/" at its end
};
