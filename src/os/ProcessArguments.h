#pragma once

#include <string>
#include <vector>

namespace pxvis::os {

// What the running program was started with, its name first. Empty if the system doesn't tell.
std::vector<std::string> ProcessArguments();

}
