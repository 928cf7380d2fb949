#include "toolkit/OQDrawWnd.h"

#include "foundation/IOQTools.h"
#include "foundation/OQSiblingModules.h"
#include "toolkit/IOQPaint.h"

void OQDrawWnd::OnPaint(IOQPaint& paint)
{
    constexpr uint32_t grey = 0xC0C0C0;
    IOQTools* const tools = OQSiblingModules::Get().Tools();
    const IOQTheme* const theme = tools ? tools->GetTheme(1) : nullptr;
    paint.FillRect(GetClientRect(), theme ? theme->GetColor(OQThemeControl) : grey);
}
