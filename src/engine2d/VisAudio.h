#pragma once

#include "foundation/OQString.h"

#include <pxvis/IVisAudioData.h>
#include <pxvis/SysString.h>

// 1.0 on a strong transient, else 0.0.
inline double VisImpact(IVisAudioData& audio)
{
    return audio.GetValue(VisAudioValueLevel) > 100 ? 1.0 : 0.0;
}

// A field of the current track; empty if the host doesn't know it.
inline OQString VisTrackText(IVisAudioData& audio, VisTrackField field)
{
    char16_t* answer = audio.GetTrackField(field);
    OQString text = answer;
    SysFreeString(answer);
    return text;
}
