#pragma once

#include <string>
#include <string_view>

namespace pxvis {

// A JSON string, quotes included, of any bytes: what isn't UTF-8 becomes U+FFFD.
std::string JsonText(std::string_view text);

}
