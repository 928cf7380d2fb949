#pragma once

#include <pxvis/IVisAudioData.h>

// 1.0 on a strong transient, else 0.0.
inline double VisImpact(IVisAudioData& audio)
{
    return audio.GetValue(VisAudioValueLevel) > 100 ? 1.0 : 0.0;
}
