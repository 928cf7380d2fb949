#include "siblings/image/Utf8.h"

#include <cstdint>

namespace pxvis::image {

std::string Utf8(const OQChar* text, size_t maxUnits)
{
    std::string result;
    for (size_t i = 0; i < maxUnits && text[i]; ++i) {
        uint32_t c = text[i];
        if (c >= 0xD800 && c < 0xE000) {
            const bool pair = c < 0xDC00 && i + 1 < maxUnits && (text[i + 1] & 0xFC00) == 0xDC00;
            c = pair ? 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00u) : 0xFFFD;
        }
        const auto push = [&](uint32_t byte) { result.push_back(static_cast<char>(byte)); };
        if (c < 0x80) {
            push(c);
        } else if (c < 0x800) {
            push(0xC0 | c >> 6);
            push(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            push(0xE0 | c >> 12);
            push(0x80 | (c >> 6 & 0x3F));
            push(0x80 | (c & 0x3F));
        } else {
            push(0xF0 | c >> 18);
            push(0x80 | (c >> 12 & 0x3F));
            push(0x80 | (c >> 6 & 0x3F));
            push(0x80 | (c & 0x3F));
        }
    }
    return result;
}

}
