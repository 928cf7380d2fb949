#include "apps/pxvis/FontList.h"

#include "foundation/IOQImage.h"
#include "foundation/OQDllString.h"
#include "foundation/OQSiblingModules.h"

namespace pxvis {

bool ListFonts(OQStringArray& fonts)
{
    fonts.Clear();
    IOQImageApp* module = OQSiblingModules::Get().ImageApp();
    OQString list;
    OQDllString names(list);
    if (!module || !module->ListFonts(names))
        return false;
    if (!list.IsEmpty())
        list.Split(u'\n', fonts);
    return true;
}

}
