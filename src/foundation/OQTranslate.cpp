#include "foundation/OQTranslate.h"

#include "foundation/IOQTools.h"
#include "foundation/OQDllString.h"
#include "foundation/OQSiblingModules.h"

void OQTranslate(OQString& text) noexcept
{
    IOQTools* tools = OQSiblingModules::Get().Tools();
    if (const IOQTranslator* translator = tools ? tools->GetTranslator(1) : nullptr) {
        OQDllString crossing(text);
        translator->Translate(crossing);
    }
}

OQString OQTranslated(const OQChar* text)
{
    OQString translated(text);
    OQTranslate(translated);
    return translated;
}
