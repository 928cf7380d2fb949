#include "components/FlushPresets.h"

#include "engine2d/VisPresets.h"

namespace {

constexpr VisPreset flushes[] = {
    { u"Always Flush", u"f=1;" },
    { u"Impact Flush", u"f=impact;" },
};

}

const CVisPresetMap& FlushPresets()
{
    static const CVisPresetMap map = MakePresetMap(flushes);
    return map;
}
