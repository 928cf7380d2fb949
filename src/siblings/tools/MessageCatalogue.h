#pragma once

#include "foundation/OQMap.h"
#include "foundation/OQString.h"

#include <string>
#include <string_view>

namespace pxvis::tools {

// The messages of a compiled gettext catalogue in UTF-8 (a ".mo" file, whose form the gettext
// manual tells in "The Format of GNU MO Files"), of either byte order. Of messages with plural
// forms the first forms count. One thread at a time; memory that can't be had throws.
class MessageCatalogue
{
public:
    static constexpr size_t kMaxBytes = 4 * 1024 * 1024;
    static constexpr uint32_t kMaxMessages = 16384;

    // False, and an empty catalogue, for bytes that are none.
    bool Load(std::string_view bytes);
    bool LoadFile(const std::string& path);

    // Null for a message that isn't known.
    const OQString* Find(const OQString& message) const;

private:
    OQMap<OQString, OQString> m_messages;
};

}
