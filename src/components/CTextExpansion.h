#pragma once

#include "foundation/OQString.h"

#include <cstdint>
#include <string>
#include <string_view>

class IVisAudioData;

// Puts what is known of the current track into a text, in place of tokens such as ARTIST. Asks the
// host only for what the text names. Keeps its memory between calls.
class CTextExpansion
{
public:
    // The page, as the host expands it, with every occurrence of each token replaced in the order
    // of their table: a value that holds a later token is expanded again. At most
    // VisLimits::textUnits long; what is past that is left out. Good until the next call. Takes the
    // work of it, if need be more than there is left.
    const std::u16string& Expand(const OQString& page, IVisAudioData& audio);

private:
    void TakeHostText(const OQString& page, IVisAudioData& audio);
    void Replace(std::u16string_view token, std::u16string_view value);

    std::u16string m_text;
    std::u16string m_other; // where the next text is put together
    bool m_isPlain = false; // m_text is what the host gave, and holds no token
};

// "h:mm:ss" from an hour on, else "m:ss".
OQString FormatTrackTime(int32_t seconds);
