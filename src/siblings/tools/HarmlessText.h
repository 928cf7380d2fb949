#pragma once

#include "foundation/OQString.h"

#include <string>

namespace pxvis::tools {

// One line for a file or a terminal, in UTF-8, whatever a stranger put into the text: characters
// that would end the line, command a terminal or turn the direction of writing are spelled out, and
// a very long text is cut off.
std::string HarmlessText(const OQString& text);

}
