#include "toolkit/OQLayoutWnd.h"

#include "foundation/IOQTools.h"
#include "foundation/OQSiblingModules.h"

int32_t OQLayoutWnd::Scale(int32_t length)
{
    IOQTools* const tools = OQSiblingModules::Get().Tools();
    const IOQDisplayScale* const scale = tools ? tools->GetDisplayScale(1) : nullptr;
    return scale ? scale->Scale(length) : length;
}
