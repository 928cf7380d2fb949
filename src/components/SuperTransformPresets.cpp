#include "components/SuperTransformPresets.h"

#include "components/TransformPresets.h"
#include "engine2d/VisPresets.h"

const OQChar* const kitchenSinkTransforms
    = u"d=d*(1-abs((sin(r*100)/10)))|d=d*0.995|d=d*0.95|d=d*0.80|r=r-0.01|r=r+0.01|"
      u"r=r+0.07*((1.0-d)^4);d=d*0.98|r=r+(sin(d*4)/5)|r=r-(sin(d*20)/20)|"
      u"d=d-(0.1*(0.5-abs(d-0.5)))|r=r-(sin(d*25)*.01)|d=d-(abs(sin(d*25))/40+0.01)|"
      u"d=d+rand(.1)|d=d-rand(.1)|d=log(d*3)*.70|d=d-.5|d=d-(abssin(d*10)/10)|"
      u"d=d-(abssin(r*(3.14*5))/15)|d=d-(cos(r*50)/100)|d=d-(cos(r*500)/100)|"
      u"d=d-(cos(r*50)/10);r=r-(sin(d*50)/10)|d=d-(.1*(.5-abs(d-.5)))|d=.96*d;r=d*.01|"
      u"d=atan(d)|d=-log10(d)|d=d+0.01*(-1.0-sin(r*(3.14*10)))|d=sin(r*2*3.14)*d*1.1|"
      u"t=d;d=abs(tan((d+0.04)*3.14159))*0.02;|d=(d-1)*0.5|"
      u"d=0.98*d-sin(r+3.14159/2)*0.03-y*0.1;|r=r-(sin(d*55)*.01);d=d-(cos(r*50)/100);|"
      u"r=r-(sin(d*15)*.01);d=d-(cos(r*50)/100);";

namespace {

constexpr const OQChar* none = u"(none)";

constexpr VisPreset scrolls[] = {
    { none, u"" },
    { u"Impact Swerve (some)",
        u"x=x*.9+vx;y=y*.9+vy;vx=if(impact,randn(.01),vy*.9);vy=if(impact,randn(.01),vy*.9);" },
    { u"Impact Swerve (more)",
        u"x=x*.9+vx;y=y*.9+vy;vx=if(impact,randn(.05),vy*.9);vy=if(impact,randn(.05),vy*.9);" },
    { u"Sway", u"x=sin(t/11)/40;y=sin(t/17)/40;t=t+0.3;" },
    { u"Running Up", u"y=.03;" },
    { u"Running Down", u"y=-.03;" },
    { u"Running Right", u"x=.03;" },
    { u"Running Left", u"x=-.03;" },
};

constexpr VisPreset turns[] = {
    { none, u"" },
    { u"Cycle Spin", u"r=sin(t)/10;t=t+.01;" },
    { u"Roll Counter-Clockwise (slow)", u"r=.01;" },
    { u"Roll Counter-Clockwise (medium)", u"r=.05;" },
    { u"Roll Counter-Clockwise (crazy)", u"r=.5;" },
    { u"Roll Clockwise (slow)", u"r=-.01;" },
    { u"Roll Clockwise (medium)", u"r=-.05;" },
    { u"Roll Clockwise (crazy)", u"r=-.5;" },
    { u"Impact Roll", u"r=r*.9+vr;vr=if(impact,randn(.05),vr*.9);" },
};

constexpr VisPreset adds[] = {
    { none, u"" },
    { u"White Impact Flash", u"a=if(impact,1,0);r=a;g=a;b=a;" },
    { u"Black Impact Flash", u"a=if(impact,-1,0);r=a;g=a;b=a;" },
    { u"Red Impact Flash", u"r=if(impact,1,0);" },
    { u"Blue Impact Flash", u"b=if(impact,1,0);" },
    { u"Green Impact Flash", u"g=if(impact,1,0);" },
    { u"Random Impact Flash",
        u"r=if(impact,rand(1),0);b=if(impact,rand(1),0);g=if(impact,rand(1),0);" },
    { u"White Beat Flash", u"a=if(beat,1,0);r=a;g=a;b=a;" },
    { u"White-Black Cycle", u"r=abssin(t)-.9;g=abssin(t)-.9;b=abssin(t)-.9;t=t+.01;" },
    { u"Fruit Punch Sherbet",
        u"r=if(impact,randn(.05),r);g=if(impact,randn(.05),g);b=if(impact,randn(.05),b);" },
};

// Here nothing is done by an empty equation.
CVisPresetMap WithEmptyNone(const CVisPresetMap& presets)
{
    CVisPresetMap map = presets;
    map.Set(none, u"");
    return map;
}

}

const CVisPresetMap& SuperTransformPresets()
{
    static const CVisPresetMap map = [] {
        CVisPresetMap extended = WithEmptyNone(TransformPresets());
        extended.Set(u"Kitchen Sink", kitchenSinkTransforms);
        return extended;
    }();
    return map;
}

const CVisPresetMap& SuperTransformZoomPresets()
{
    static const CVisPresetMap map = WithEmptyNone(TransformZoomPresets());
    return map;
}

const CVisPresetMap& SuperTransformScrollPresets()
{
    static const CVisPresetMap map = MakePresetMap(scrolls);
    return map;
}

const CVisPresetMap& SuperTransformRotatePresets()
{
    static const CVisPresetMap map = MakePresetMap(turns);
    return map;
}

// The Transform's colours but for the cycles.
const CVisPresetMap& SuperTransformFadePresets()
{
    static const CVisPresetMap map = [] {
        CVisPresetMap fades;
        for (const auto& preset : TransformColorPresets()) {
            if (!preset.key.StartsWith(u"Color Cycle"))
                fades.Set(preset.key, preset.value);
        }
        return fades;
    }();
    return map;
}

const CVisPresetMap& SuperTransformAddPresets()
{
    static const CVisPresetMap map = MakePresetMap(adds);
    return map;
}
