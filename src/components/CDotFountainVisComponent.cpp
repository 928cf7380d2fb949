#include "components/CDotFountainVisComponent.h"

#include "engine2d/CVisBufferHelper.h"
#include "engine2d/VisAudio.h"

namespace {

constexpr int32_t color = 0x323232;
constexpr int32_t modeAdd = 1;

}

int32_t CDotFountainVisComponent::Draw(IVisBuffer& buffer, IVisAudioData& audio)
{
    if (VisImpact(audio) == 0.0)
        return 0;
    CVisBufferHelper picture(buffer);
    for (const float direction : { 0.0f, 0.2f, 0.4f, 0.6f, 0.8f })
        picture.DrawDisc(0.2f, direction, 0.05f, color, modeAdd);
    return 0;
}
