#include "components/ParticlePresets.h"

#include "engine2d/VisPresets.h"

namespace {

// The same as the default but for "}", the larger of two numbers by size, in place of their
// difference.
constexpr VisPreset particles[] = {
    { u"Center Bounce",
        u"r=r+(cos(t)/50);d=abssin(t)/4;t=t+0.01;cs=(0.02)}(beat*0.15);s=(s-0.01)>cs" },
};

constexpr VisPreset colors[] = {
    { u"Light White", u"r=.05;g=.05;b=.05;" },
};

// "Multiply" changes no pixel; its name stays, so that scripts that have it load.
constexpr VisPreset blends[] = {
    { u"Replace", u"0" },
    { u"Add", u"1" },
    { u"Subtract", u"2" },
    { u"Average", u"3" },
    { u"Multiply", u"4" },
};

}

const CVisPresetMap& ParticlePresets()
{
    static const CVisPresetMap map = MakePresetMap(particles);
    return map;
}

const CVisPresetMap& ParticleColorPresets()
{
    static const CVisPresetMap map = MakePresetMap(colors);
    return map;
}

const CVisPresetMap& ParticleBlendPresets()
{
    static const CVisPresetMap map = MakePresetMap(blends);
    return map;
}
