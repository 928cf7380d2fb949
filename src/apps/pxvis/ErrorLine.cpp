#include "apps/pxvis/ErrorLine.h"

#include <ostream>

namespace pxvis {

std::string PrintableLine(const std::string& text)
{
    constexpr size_t longest = 1000;
    std::string line = text.substr(0, longest);
    for (size_t i = 0; i < line.size(); ++i) {
        const auto byte = static_cast<unsigned char>(line[i]);
        // U+0080 to U+009F, which some terminals obey as well.
        const bool isHighControl = i > 0 && line[i - 1] == '\xC2' && byte >= 0x80 && byte < 0xA0;
        if (isHighControl)
            line.replace(--i, 2, "?");
        else if (byte < 32 || byte == 127)
            line[i] = '?';
    }
    return text.size() > longest ? line + "..." : line;
}

int PrintError(std::ostream& errors, const std::string& message)
{
    errors << "pxvis: " << PrintableLine(message) << '\n';
    return 1;
}

void PrintWarning(std::ostream& errors, const std::string& message)
{
    PrintError(errors, "warning: " + message);
}

int PrintUsageError(std::ostream& errors, const std::string& message)
{
    PrintError(errors, message);
    return 2;
}

}
