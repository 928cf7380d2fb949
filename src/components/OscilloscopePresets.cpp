#include "components/OscilloscopePresets.h"

#include "engine2d/VisPresets.h"

namespace {

constexpr VisPreset lines[] = {
    { u"Middle Spin", u"r1=0+t;d1=.5;r2=.5+t;d2=.5;t=t+0.01" },
    { u"Radar", u"r1=0;d1=0;r2=t;d2=1;t=t+0.01" },
    { u"Top-to-Bottom", u"x1=.5;y1=0;x2=.5;y2=1;" },
    { u"Slip Slidin'", u"x1=.5+d;y1=0;x2=.5+d;y2=1;d=d*.9+v;v=if(impact,randn(.1),v*.9);" },
    { u"Across Middle", u"x1=0;y1=.5;x2=1;y2=.5;" },
    { u"Across Top", u"x1=0;y1=.1;x2=1;y2=.1;" },
    { u"Across Bottom", u"x1=0;y1=.9;x2=1;y2=.9;" },
};

constexpr VisPreset fills[] = {
    { u"Solid", u"0" },
    { u"Gradient (top down)", u"1" },
    { u"Gradient (bottom up)", u"2" },
};

// Flags: 1 filled, 2 mirrored, 4 absolute. Two names have one value.
constexpr VisPreset drawStyles[] = {
    { u"Line", u"0" },
    { u"Filled", u"1" },
    { u"Mirrored", u"2" },
    { u"ABS (line)", u"4" },
    { u"ABS (filled)", u"1" },
};

constexpr VisPreset channels[] = {
    { u"Center", u"0" },
    { u"Left", u"1" },
    { u"Right", u"2" },
};

}

const CVisPresetMap& OscilloscopeLinePresets()
{
    static const CVisPresetMap map = MakePresetMap(lines);
    return map;
}

const CVisPresetMap& OscilloscopeFillPresets()
{
    static const CVisPresetMap map = MakePresetMap(fills);
    return map;
}

const CVisPresetMap& OscilloscopeDrawPresets()
{
    static const CVisPresetMap map = MakePresetMap(drawStyles);
    return map;
}

const CVisPresetMap& OscilloscopeChannelPresets()
{
    static const CVisPresetMap map = MakePresetMap(channels);
    return map;
}
