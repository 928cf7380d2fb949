#include "siblings/tools/HarmlessText.h"

#include "foundation/OQNumberText.h"

namespace pxvis::tools {

namespace {

constexpr int kMaxLine = 8192; // characters

// The last ones would show another text than the one that stands there.
bool IsHarmful(OQChar character)
{
    return character < 32 || (character >= 127 && character < 160)
        || (character >= 0x2028 && character <= 0x202E)
        || (character >= 0x2066 && character <= 0x2069);
}

}

std::string HarmlessText(const OQString& text)
{
    OQString line;
    for (const OQChar character : text.View().substr(0, kMaxLine)) {
        if (!IsHarmful(character)) {
            line += character;
            continue;
        }
        line += u"\\x";
        OQAppendUnsigned(line, character, 2, 16);
    }
    if (text.GetLength() > kMaxLine)
        line += u"...";
    return line.ToUtf8();
}

}
