#include "components/SpectrumAnalyzerPresets.h"

#include "engine2d/VisPresets.h"

namespace {

constexpr VisPreset drawSources[] = {
    { u"Gradient", u"0" },
    { u"Image", u"1" },
};

constexpr VisPreset channels[] = {
    { u"Middle", u"0" },
    { u"Left", u"1" },
    { u"Right", u"2" },
};

constexpr VisPreset gravities[] = {
    { u"Ultra-Low", u"128" },
    { u"Low", u"512" },
    { u"Normal", u"1024" },
    { u"High", u"2048" },
    { u"Ultra-High", u"8192" },
};

constexpr VisPreset terminalVelocities[] = {
    { u"(none)", u"0" },
};

constexpr VisPreset throwForces[] = {
    { u"(none)", u"0" },
    { u"Some", u"15" },
    { u"More", u"35" },
    { u"Crazy", u"100" },
};

constexpr VisPreset elements[] = {
    { u"All", u"512" },
    { u"Ignore Highest Frequencies", u"400" },
};

constexpr VisPreset scales[] = {
    { u"Linear", u"1" },
    { u"Squish Highs (some)", u"3" },
    { u"Squish Highs (more)", u"5" },
    { u"Squish Highs (a lot)", u"8" },
};

constexpr VisPreset weights[] = {
    { u"Don't Amplify Highs", u"0" },
    { u"Amplify Highs (some)", u"5" },
    { u"Amplify Highs (more)", u"10" },
    { u"Amplify Highs (a lot)", u"15" },
};

constexpr VisPreset raises[] = {
    { u"(none)", u"100" },
    { u"Raise Bars (some)", u"80" },
    { u"Raise Bars (more)", u"50" },
    { u"Raise Bars (a lot)", u"30" },
};

constexpr VisPreset widths[] = {
    { u"Ultra-Thin", u"0" },
    { u"Thin", u"0.005" },
    { u"Medium", u"0.01" },
    { u"Thick", u"0.02" },
    { u"Ultra-Thick", u"0.1" },
};

constexpr VisPreset spacings[] = {
    { u"(none)", u"0" },
    { u"Some", u"0.003" },
    { u"Too Thick", u"0.1" },
};

constexpr VisPreset peaks[] = {
    { u"Thin", u"0" },
    { u"Medium", u"0.008" },
};

}

const CVisPresetMap& SpectrumDrawSourcePresets()
{
    static const CVisPresetMap map = MakePresetMap(drawSources);
    return map;
}

const CVisPresetMap& SpectrumChannelPresets()
{
    static const CVisPresetMap map = MakePresetMap(channels);
    return map;
}

const CVisPresetMap& SpectrumGravityPresets()
{
    static const CVisPresetMap map = MakePresetMap(gravities);
    return map;
}

const CVisPresetMap& SpectrumTerminalVelocityPresets()
{
    static const CVisPresetMap map = MakePresetMap(terminalVelocities);
    return map;
}

const CVisPresetMap& SpectrumThrowPresets()
{
    static const CVisPresetMap map = MakePresetMap(throwForces);
    return map;
}

const CVisPresetMap& SpectrumElementPresets()
{
    static const CVisPresetMap map = MakePresetMap(elements);
    return map;
}

const CVisPresetMap& SpectrumScalePresets()
{
    static const CVisPresetMap map = MakePresetMap(scales);
    return map;
}

const CVisPresetMap& SpectrumWeightPresets()
{
    static const CVisPresetMap map = MakePresetMap(weights);
    return map;
}

const CVisPresetMap& SpectrumRaisePresets()
{
    static const CVisPresetMap map = MakePresetMap(raises);
    return map;
}

const CVisPresetMap& SpectrumWidthPresets()
{
    static const CVisPresetMap map = MakePresetMap(widths);
    return map;
}

const CVisPresetMap& SpectrumSpacingPresets()
{
    static const CVisPresetMap map = MakePresetMap(spacings);
    return map;
}

const CVisPresetMap& SpectrumPeakPresets()
{
    static const CVisPresetMap map = MakePresetMap(peaks);
    return map;
}
