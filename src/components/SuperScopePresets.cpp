#include "components/SuperScopePresets.h"

#include "engine2d/VisPresets.h"

namespace {

constexpr VisPreset scopes[] = {
    { u"Funky Boxes",
        u"n=100;t=0;|r=i*3.14159*128+t;x=cos(r/64)*0.7+sin(r)*0.3;y=sin(r/64)*0.7+cos(r)*0.3"
        u"|t=t+0.01;||n=80+rand(120.0);" },
    { u"Boomerang",
        u"n=80;t=0.0;|r=i*3.14159*2; d=sin(r*3)+v*1.0; x=cos(t+r)*d; y=sin(t-r)*d|t=t+0.01" },
    { u"Slip Slidin'",
        u"n=100;t=0;tv=0.1;dt=1;|x=t+v*sin(i*3.14159)^2;y=i*2-1.0;|t=t*0.9+tv*0.1|"
        u"|tv=rand(1)*dt;dt=-dt;" },
    { u"Diagonal Scope",
        u"n=64;t=1;|sc=0.4*sin(i*3.14159);x=2*(i-0.5-v*sc)*t;y=2*(i-0.5+v*sc);|||t=-t;" },
    { u"Satellite Dish",
        u"n=200 | iz=1.3+sin(r+i*3.14159*2)*(v+0.5)*0.88; ix=cos(r+i*3.14159*2)*(v+0.5)*.88; "
        u"iy=-0.3+abs(cos(v*3.14159)); x=ix/iz;y=iy/iz;" },
    { u"Spinning Squiggle",
        u"n=100; dt=0.01; t=0; sc=1;|x=cos(2*i+t)*0.9*(v*0.5+0.5); y=sin(i*2+t)*0.9*(v*0.5+0.5);"
        u"|t=t+dt;dt=0.9*dt+0.001; t=if(above(t,3.14159*2),t-3.14159*2,t);||dt=sc;sc=-sc;" },
    { u"Pen Seizure",
        u"n=100|x=cos(i*ra)*0.9*(v*3+0.5); y=sin(i*rb)*0.9*(v*3+0.5);|||ra=rand(1000);"
        u"rb=rand(1000)" },
};

}

const CVisPresetMap& SuperScopePresets()
{
    static const CVisPresetMap map = MakePresetMap(scopes);
    return map;
}
