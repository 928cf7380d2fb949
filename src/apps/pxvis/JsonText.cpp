#include "apps/pxvis/JsonText.h"

#include "foundation/OQString.h"

namespace pxvis {

std::string JsonText(std::string_view text)
{
    std::string json = "\"";
    for (const char character : OQString::FromUtf8(text).ToUtf8()) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 32 || byte == 127) {
            constexpr const char* digits = "0123456789abcdef";
            json += "\\u00";
            json += digits[byte >> 4];
            json += digits[byte & 15];
        } else {
            if (character == '"' || character == '\\')
                json += '\\';
            json += character;
        }
    }
    return json + '"';
}

}
