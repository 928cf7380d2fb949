#pragma once

#include <string_view>

namespace pxvis::os {

// What is for whoever is after a fault: to standard error if PXVIS_LOG in the environment begins
// with "stderr", and otherwise nowhere, since standard error is the host's.
void WriteDebugOutput(std::string_view text);

}
