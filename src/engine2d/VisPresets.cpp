#include "engine2d/VisPresets.h"

#include "foundation/OQEngineContext.h"

namespace {

constexpr VisPreset noYes[] = {
    { u"No", u"0" },
    { u"Yes", u"1" },
};

constexpr VisPreset rectangles[] = {
    { u"Full Window", u"0,0,1,1" },
    { u"Bottom Half", u"0,0.5,1,1" },
    { u"Top Half", u"0,0,1,0.5" },
    { u"Left Half", u"0,0,0.5,1" },
    { u"Right Half", u"0.5,0,1,1" },
};

constexpr VisPreset outputModes[] = {
    { u"Replace", u"0" },
    { u"Blend (50 / 50)", u"1" },
    { u"Add", u"2" },
};

constexpr VisPreset onEquations[] = {
    { u"Always On", u"on=1" },
    { u"Always Off", u"on=0" },
    { u"Once", u"on=if(once,0,1);once=1;" },
    { u"Impact On", u"on=impact" },
    { u"Beat On", u"on=beat" },
    { u"Impact On (lasting)", u"on=if(impact,rand(50),on-1)" },
    { u"Beat On (lasting)", u"on=if(beat,rand(50),on-1)" },
    { u"Impact Off", u"on=if(impact,0,1)" },
    { u"Beat Off", u"on=if(beat,0,1)" },
    { u"Impact Off (lasting)", u"on=if(impact,-rand(50),on+1)" },
    { u"Beat Off (lasting)", u"on=if(beat,-rand(50),on+1)" },
    { u"Every 2nd Frame", u"on=if(on,0,1)" },
    { u"Every 3rd Frame", u"on=if(t<1,1,0);t=(t+1)%3;" },
    { u"Every 10th Frame", u"on=if(t<1,1,0);t=(t+1)%10;" },
    { u"Random", u"on=if(rand(1)>.5,1,0)" },
};

// A blank behind a comma hides the "0x" of the colour that follows, so that "Yellow Metal" and
// "Pine" end in black. Kept: scripts choose them for what they look like.
constexpr VisPreset gradients[] = {
    { u"Rainbow Cycle",
        u"{2, 4} [[0xFF0000,0x000000][0x00FF00,0x000000][0x0000FF,0x000000][0xFF0000,0x000000]]" },
    { u"America", u"{3, 1} [[0xFF0000,0xFFFFFF,0x0000FF]]" },
    { u"Night Life", u"{2, 1} [[0x4F2F4F,0xFF7C00]]" },
    { u"Yellow Metal", u"{3, 1} [[0xC0C0C0,0xFFE743, 0xFFFFFF]]" },
    { u"Purple Dance", u"{2, 1} [[0xFF40FF,0x4040FF]]" },
    { u"Pine", u"{2, 1} [[0x014701, 0x008000]]" },
    { u"Sundance", u"{3, 1} [[0x9500C0,0xFF7D43,0xFFFF40]]" },
    { u"Fire (1)", u"{3, 1} [[0xFF0000,0xFFFF00,0xFF0000]]" },
    { u"RGB", u"{3, 1} [[0xFF0000,0x00FF00,0x0000FF]]" },
    { u"Red-Pink", u"{4, 1} [[0xD8A8A8,0x800000,0xEFD5D5,0xFFC1C1]]" },
    { u"Candy Cane",
        u"{8, 1} [[0xFF0000,0xFFFFFF,0xFF0000,0xFFFFFF,0xFF0000,0xFFFFFF,0xFF0000,0xFFFFFF]]" },
    { u"Take Blue", u"{2, 1} [[0x0000C0,0x000080]]" },
    { u"Black-White", u"{2, 1} [[0x000000,0xFFFFFF]]" },
    { u"White-Black", u"{2, 1} [[0xFFFFFF,0x000000]]" },
};

constexpr VisPreset takeRed { u"Take Red", u"{2, 1} [[0xC00000,0x800000]]" };

}

CVisPresetMap MakePresetMap(std::span<const VisPreset> presets)
{
    CVisPresetMap map;
    for (const VisPreset& preset : presets)
        map.Set(preset.name, preset.value);
    return map;
}

const CVisPresetMap& NoYesPresets()
{
    static const CVisPresetMap map = MakePresetMap(noYes);
    return map;
}

const CVisPresetMap& RectanglePresets()
{
    static const CVisPresetMap map = MakePresetMap(rectangles);
    return map;
}

const CVisPresetMap& OutputModePresets()
{
    static const CVisPresetMap map = MakePresetMap(outputModes);
    return map;
}

const CVisPresetMap& OnEquationPresets()
{
    static const CVisPresetMap map = MakePresetMap(onEquations);
    return map;
}

const CVisPresetMap& GradientPresets()
{
    static const CVisPresetMap map = MakePresetMap(gradients);
    return map;
}

const CVisPresetMap& GradientPresetsWithTakeRed()
{
    static const CVisPresetMap map = [] {
        CVisPresetMap extended = MakePresetMap(gradients);
        extended.Set(takeRed.name, takeRed.value);
        return extended;
    }();
    return map;
}

OQString RandomPresetValue(const CVisPresetMap& map)
{
    int32_t remaining = OQRand() % map.GetCount();
    for (const auto& preset : map) {
        if (remaining-- == 0)
            return preset.value;
    }
    return {};
}
