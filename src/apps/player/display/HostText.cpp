#include "apps/player/display/HostText.h"

#include <pxvis/SysString.h>

namespace pxvis::player {

char16_t* HostText(QString text)
{
    if (text.isEmpty())
        return nullptr;
    if (text.size() > mostTextUnits)
        text.truncate(mostTextUnits - (text[mostTextUnits - 1].isHighSurrogate() ? 1 : 0));
    for (qsizetype at = 0; at < text.size(); ++at) {
        const bool isPair
            = text[at].isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate();
        if (isPair)
            ++at;
        else if (text[at].isSurrogate() || text[at].isNull())
            text[at] = QChar::ReplacementCharacter;
    }
    return SysAllocString(reinterpret_cast<const char16_t*>(text.utf16()));
}

}
