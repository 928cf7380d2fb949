#include "engine2d/VisFonts.h"

#include "foundation/IOQImage.h"
#include "foundation/OQDllString.h"
#include "foundation/OQSiblingModules.h"

bool VisListFonts(OQStringArray& fonts)
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

const OQString& VisFontPresets()
{
    static const OQString presets = [] {
        OQString text = u"DEFAULT|";
        OQStringArray fonts;
        VisListFonts(fonts);
        for (const OQString& font : fonts)
            text += font + u'|';
        return text;
    }();
    return presets;
}
