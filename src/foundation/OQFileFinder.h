#pragma once

#include "foundation/OQString.h"
#include "os/Folder.h"

#include <set>
#include <string>
#include <vector>

enum class OQFinderDepth
{
    Folder,
    Tree,
    TreeAndLinks, // goes into the folders that links lead to as well
};

// Walks a folder, in the order of the names' bytes: an entry of a folder comes before what lies
// behind it in the alphabet, and what is in a folder right after the folder. A walk into
// sub-folders goes into each once, however links lead there, and 64 levels down at most. One that
// can't be read is passed over.
class OQFileFinder
{
public:
    static constexpr size_t MaximumEntries = 100'000; // looked at, whether they match or not

    // `pattern` is held against the names of files and folders without regard to case: "*" is any
    // number of characters, "?" is one, and "*.*" is all. `folder` may have "/" at its end.
    OQFileFinder(const OQString& folder, const OQString& pattern, OQFinderDepth depth,
        size_t maximumEntries = MaximumEntries);
    OQFileFinder(const OQFileFinder&) = delete;
    OQFileFinder& operator=(const OQFileFinder&) = delete;

    // Moves to the next entry, at first to the first one; false behind the last.
    bool Next();

    // Of the entry; after Next gave true.
    const OQString& GetPath() const { return m_path; }

    const OQString& GetRelativePath() const { return m_relative; } // below the folder, with "/"

    const OQString& GetName() const { return m_name; }

    bool IsFolder() const { return m_entry.isFolder; }

    bool IsLink() const { return m_entry.isLink; }

    // After the last entry: nothing was left out because there was too much.
    bool IsComplete() const { return m_isComplete; }

    static bool Matches(const OQString& name, const OQString& pattern);

private:
    struct Level
    {
        std::string relative; // of the folder, with "/" at its end or empty
        std::vector<pxvis::os::FolderEntry> entries;
        size_t next = 0;
    };

    void Enter(const std::string& relative);

    std::string m_folder; // with "/" at its end
    OQString m_pattern;
    OQFinderDepth m_depth;
    size_t m_entriesLeft;
    bool m_isComplete = true;
    std::vector<Level> m_levels;
    std::set<pxvis::os::FolderIdentity> m_entered;
    pxvis::os::FolderEntry m_entry;
    std::string m_relativeBytes; // as the system has it, which need not be UTF-8
    OQString m_path;
    OQString m_relative;
    OQString m_name;
};
