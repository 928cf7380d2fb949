#include "apps/pxvis/ErrorLine.h"

#include <ostream>

namespace pxvis {

int PrintError(std::ostream& errors, const std::string& message)
{
    constexpr size_t longest = 1000;
    std::string line = message.substr(0, longest);
    for (char& character : line) {
        if (static_cast<unsigned char>(character) < 32 || character == 127)
            character = '?';
    }
    errors << "pxvis: " << line << (message.size() > longest ? "...\n" : "\n");
    return 1;
}

}
