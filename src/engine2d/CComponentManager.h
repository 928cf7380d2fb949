#pragma once

#include "foundation/OQArray.h"
#include "foundation/OQStringArray.h"

#include <cstdint>
#include <memory>

class CVisComponent;

// The registry record of a component type. Plain bytes: editors copy it.
struct VISUALIZATION_COMPONENT_INFO_EX
{
    char guid[256];
    int32_t version; // 1
    int32_t category; // 0: reworks the picture, 1: paints
    char name[256];
    char reserved[256];
    int32_t index; // position in the registry
};

// The registry of the component types.
class CComponentManager
{
public:
    // Reads the built-in table into the registry.
    void Fill();

    int32_t GetCount() const { return m_infos.GetCount(); }

    // 0, or -1 for an index outside the built-in table.
    static int32_t GetInfo(int32_t index, VISUALIZATION_COMPONENT_INFO_EX& info);

    // The position of the record with exactly this GUID, or -1. Case counts.
    int32_t FindByGuid(const OQString& guid) const;

    // The names of a category in sorted order, and beside each its position in the registry.
    void List(int32_t category, OQStringArray& names, OQNumberArray<int32_t>& indexes) const;

    // 0, or -1 and null for an index without a type. The component has no name and GUID yet.
    static int32_t CreateComponent(int32_t index, std::unique_ptr<CVisComponent>& component);

    // A component with its name and GUID; null for a position outside the registry.
    std::unique_ptr<CVisComponent> MakeComponent(int32_t position) const;

private:
    OQArray<VISUALIZATION_COMPONENT_INFO_EX> m_infos;
};

// The object of a component type, or null. Defined beside the components, so that the engine
// includes nothing that stands above it.
std::unique_ptr<CVisComponent> CreateVisComponent(int32_t index);
