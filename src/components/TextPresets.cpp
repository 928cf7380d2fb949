#include "components/TextPresets.h"

#include "engine2d/VisPresets.h"

namespace {

constexpr VisPreset alignments[] = {
    { u"Left/Top", u"0" },
    { u"Center/Top", u"1" },
    { u"Right/Top", u"2" },
    { u"Left/Center", u"4" },
    { u"Center/Center", u"5" },
    { u"Right/Center", u"6" },
    { u"Left/Bottom", u"8" },
    { u"Center/Bottom", u"9" },
    { u"Right/Bottom", u"10" },
};

}

const CVisPresetMap& TextAlignmentPresets()
{
    static const CVisPresetMap map = MakePresetMap(alignments);
    return map;
}
