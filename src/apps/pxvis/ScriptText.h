#pragma once

#include "foundation/OQString.h"

#include <string>

namespace pxvis {

// A script's text as the engine reads it. False, and one line that starts with the path, for what
// the engine would not read: no file, or too large a one.
bool ReadScriptText(const std::string& path, OQString& text, std::string& error);

}
