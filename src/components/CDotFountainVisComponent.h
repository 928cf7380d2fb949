#pragma once

#include "components/CRowVisComponent.h"

// Throws a ring of five discs on each impact. It has no rows.
class CDotFountainVisComponent final : public CRowVisComponent
{
public:
    int32_t Draw(IVisBuffer& buffer, IVisAudioData& audio) override;
};
