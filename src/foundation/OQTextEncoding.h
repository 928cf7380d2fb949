#pragma once

#include "foundation/OQString.h"

#include <cstdint>
#include <string_view>

enum class OQTextEncoding
{
    CodePage, // windows-1252, for bytes that are nothing else
    Utf8,
    Utf16, // little endian unless a byte order mark says otherwise
    Utf32,
};

// By the byte order mark or, without one, by the look of the bytes. `markLength` is the number of
// bytes of a UTF-8 mark; those of the others are units of the text.
OQTextEncoding OQDetectEncoding(std::string_view bytes, int& markLength);

// Text from the bytes of a file, without its byte order mark. What isn't in the encoding becomes
// U+FFFD, and a UTF-32 unit that 16 bits can't hold "?".
OQString OQBytesToText(std::string_view bytes);
OQString OQBytesToText(std::string_view bytes, OQTextEncoding encoding);

// One unit or two. The character is at most 0x10FFFF.
void OQAppendCharacter(OQString& text, uint32_t character);
