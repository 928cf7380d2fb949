#pragma once

#include <string_view>

namespace pxvis::os {

// For what a person must see although there is no window to show it. Standard error is the host's.
void WriteStandardError(std::string_view text);

// The same for what only somebody after a fault looks for: nothing unless PXVIS_LOG in the
// environment begins with "stderr".
void WriteDebugOutput(std::string_view text);

}
