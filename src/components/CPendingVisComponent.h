#pragma once

#include "engine2d/CVisComponent.h"
#include "engine2d/CVisPropertyList.h"

// Stands for a component type that has no code yet: keeps its rows, so that a script that uses it
// survives a load and a save, and draws nothing.
// FIXME: goes once every type in the registry has a class of its own.
class CPendingVisComponent final : public CVisComponent
{
public:
    int32_t SaveProperties(CVisPropertyList& list) override;
    int32_t LoadProperties(const CVisPropertyList* list) override;
    int32_t Draw(IVisBuffer& buffer, IVisAudioData& audio) override;

private:
    CVisPropertyList m_rows;
};
