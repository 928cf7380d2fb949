#pragma once

#include "foundation/OQArray.h"
#include "foundation/OQMap.h"
#include "foundation/OQPropertyMap.h"
#include "foundation/OQString.h"

#include <memory>
#include <vector>

namespace pxvis::tools {

// The contents of one settings file: keys by their paths, each with named values. Paths are
// compared without regard to case; between their names stands "\". As text: a root "Settings", in
// it an element "Key" with the attribute "Path" for each key, in that an "Item" with the attribute
// "Name" for each value. One thread at a time; memory that can't be had throws std::bad_alloc.
class SettingsDocument
{
public:
    static constexpr int kMaxPath = 1024; // characters
    static constexpr int kMaxKeys = 1024;

    struct Key
    {
        OQString path;
        OQPropertyMap values;
    };

    // One "\" between the names of a path and none around, from any mixture of "\" and "/". Empty
    // for a path that can't be one.
    static OQString NormalPath(const OQString& path);

    // Takes what a text has. False if some of it would be lost by writing the document again: a
    // fault, an element of no known kind.
    bool Load(const OQString& text);
    OQString Save() const;

    // All paths below are normal ones. Null without such a key.
    const Key* Find(const OQString& path) const;
    Key* Find(const OQString& path);
    // Null if there are too many keys.
    Key* FindOrAdd(const OQString& path);
    // A key of its own, or one above others.
    bool HasKey(const OQString& path) const;
    // With all below it; false if there was none.
    bool DeleteKey(const OQString& path);
    // Appends the names of the keys right below one that aren't in the list yet.
    void AddNamesBelow(const OQString& path, std::vector<OQString>& names) const;

private:
    void Reindex();

    std::vector<std::unique_ptr<Key>> m_keys; // in the order of the text
    OQStringMap<Key*> m_index;
};

}
