#pragma once

#include <cstdint>
#include <string>

namespace pxvis::os {

// Of a regular file, in bytes; -1 if there is none of that name. Any thread.
int64_t FileSize(const std::string& path);

}
