#include "components/TransformPresets.h"

#include "engine2d/VisPresets.h"

namespace {

constexpr VisPreset transforms[] = {
    { u"(none)", u"d=d;r=r;" },
    { u"Sunburster", u"d=d*(1-abs((sin(r*100)/10)));" },
    { u"Slow Zoom", u"d=d*0.995;" },
    { u"Medium Zoom", u"d=d*0.95;" },
    { u"Fast Zoom", u"d=d*0.80;" },
    { u"Slow Spin Clockwise", u"r=r-0.01" },
    { u"Slow Spin Counter-Clockwise", u"r=r+0.01" },
    { u"Mellow Swirl Out", u"r=r+0.07*((1.0-d)^4);d=d*0.98" },
    { u"Lightning Ball", u"r=r+(sin(d*4)/5)" },
    { u"Vortex", u"r=r-(sin(d*20)/20)" },
    { u"Bubble Out", u"d=d-(0.1*(0.5-abs(d-0.5)))" },
    { u"Turbulence", u"r=r-(sin(d*25)*.01)" },
    { u"Ripple Out", u"d=d-(abs(sin(d*25))/40+0.01)" },
    { u"Particalize Inward", u"d=d+rand(.1)" },
    { u"Particalize Outward", u"d=d-rand(.1)" },
    { u"Rings", u"d=log(d*3)*.70" },
    { u"Exploder", u"d=d-.5" },
    { u"Glass Ripple", u"d=d-(abssin(d*10)/10)" },
    { u"Clover", u"d=d-(abssin(r*(3.14*5))/15)" },
    { u"Meltdown", u"d=d-(cos(r*50)/100)" },
    { u"Ray-gun", u"d=d-(cos(r*500)/100)" },
    { u"Atom", u"d=d-(cos(r*50)/10);r=r-(sin(d*50)/10)" },
    { u"Bubble Spinner", u"d=d-(.1*(.5-abs(d-.5)))" },
    { u"Ringification", u"d=.96*d;r=d*.01" },
    { u"Jet Stream", u"d=atan(d)" },
    { u"Circus Mirror", u"d=-log10(d)" },
    { u"Squished Star", u"d=d+0.01*(-1.0-sin(r*(3.14*10)))" },
    { u"The Abyss", u"d=sin(r*2*3.14)*d*1.1" },
    { u"Chunkify", u"t=d;d=abs(tan((d+0.04)*3.14159))*0.02;" },
    { u"Flipped Out", u"d=(d-1)*0.5" },
    { u"Brain growth", u"d=0.98*d-sin(r+3.14159/2)*0.03-y*0.1;" },
    { u"Peacock (tight)", u"r=r-(sin(d*55)*.01);d=d-(cos(r*50)/100);" },
    { u"Peacock (loose)", u"r=r-(sin(d*15)*.01);d=d-(cos(r*50)/100);" },
};

constexpr VisPreset scrolls[] = {
    { u"(none)", u"x=0;y=0;" },
    { u"Impact Swerve (small)", u"x=v;y=v;v=if(impact,randn(.08),v*.9)" },
    { u"Impact Swerve (large)", u"x=v;y=v;v=if(impact,randn(.25),v*.9)" },
};

constexpr VisPreset zooms[] = {
    { u"(none)", u"x=0;y=0;" },
    { u"Periodic Zoom (small)", u"x=abssin(t)*.1;y=abssin(t)*.1;t=t+.05;" },
    { u"Periodic Zoom (large)", u"x=abssin(t)*.5;y=abssin(t)*.5;t=t+.05;" },
    { u"Impact Zoom (small)", u"x=v;y=v;v=if(impact,rand(.08),v*.9)" },
    { u"Impact Zoom (large)", u"x=v;y=v;v=if(impact,rand(.25),v*.9)" },
};

constexpr VisPreset colors[] = {
    { u"Slow Fade", u"r=1;g=1;b=1;" },
    { u"Medium Fade", u"r=.95;g=.95;b=.95;" },
    { u"Impact Colorize (some)",
        u"r=.99+(impact*rand(.3));b=.99+(impact*rand(.3));g=.99+(impact*rand(.3))" },
    { u"Impact Colorize (more)",
        u"r=.99+(impact*rand(.8));b=.99+(impact*rand(.8));g=.99+(impact*rand(.8))" },
    { u"Impact Colorize (lots)",
        u"r=.99+(impact*rand(.50));b=.99+(impact*rand(.50));g=.99+(impact*rand(.50))" },
    { u"Impact Colorize (insane)",
        u"r=.99+(impact*rand(1.50));b=.99+(impact*rand(1.50));g=.99+(impact*rand(1.50))" },
    { u"Color Cycle (colorize)",
        u"r=.95+abssin(t)/10;g=.95+abssin(t+2.1)/10;b=.95+abssin(t+4.2)/10;t=t+.02;" },
    { u"Color Cycle",
        u"r=.95+abssin(t)/20;g=.95+abssin(t+2.1)/20;b=.95+abssin(t+4.2)/20;t=t+.02;" },
};

constexpr VisPreset radii[] = {
    { u"Smallest Dimension", u"0" },
    { u"Largest Dimension", u"1" },
    { u"Corner-to-Corner", u"2" },
    { u"Width", u"3" },
    { u"Height", u"4" },
};

}

const CVisPresetMap& TransformPresets()
{
    static const CVisPresetMap map = MakePresetMap(transforms);
    return map;
}

const CVisPresetMap& TransformScrollPresets()
{
    static const CVisPresetMap map = MakePresetMap(scrolls);
    return map;
}

const CVisPresetMap& TransformZoomPresets()
{
    static const CVisPresetMap map = MakePresetMap(zooms);
    return map;
}

const CVisPresetMap& TransformColorPresets()
{
    static const CVisPresetMap map = MakePresetMap(colors);
    return map;
}

const CVisPresetMap& TransformRadiusPresets()
{
    static const CVisPresetMap map = MakePresetMap(radii);
    return map;
}
