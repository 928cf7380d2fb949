#include "engine2d/CComponentManager.h"

#include "engine2d/CVisComponent.h"
#include "foundation/IOQTools.h"
#include "foundation/OQFormat.h"
#include "foundation/OQNumberText.h"
#include "foundation/OQStringArraySort.h"

#include <cstring>
#include <iterator>

namespace {

struct ComponentType
{
    const char* guid;
    const char* name;
    int32_t category;
};

// Scripts name a type by its GUID, and compare it as text: the case of the digits stays as it is.
constexpr ComponentType componentTypes[] = {
    { "EB13A0B7-0B36-4bea-B95A-92ED8FEA86CD", "Transform", 0 },
    { "36267E6D-70E1-435e-9E2A-428EEA2D3C7E", "Flush", 0 },
    { "B21F9002-EF2E-4d5b-9D40-F61B8F3B34D8", "Spectrum Analyzer", 1 },
    { "01F7B01F-B355-4152-83D6-DBEB8CE7C8D4", "Oscilloscope", 1 },
    { "B8173E2F-8740-4357-8CFF-33479461B3CD", "Starfield", 1 },
    { "BBEC668A-420F-4faa-856D-880DACE05B5B", "Text", 1 },
    { "63B96C06-29A4-4de2-9A9D-9F3E08F8C014", "Image", 1 },
    { "2657C682-8576-4bd3-8EBB-60B01409FF14", "Blob Oscilloscope", 1 },
    { "50DAC8D1-E2A8-42a0-AF97-7D3E7B1C494F", "Particle", 1 },
    { "0B7BF2F7-3BD5-4a48-A06C-32D7FC8CD6E8", "Dot Fountain", 1 },
    { "DCE4B5AB-25A0-432f-B4A2-8E91B9FD1060", "Super Transform", 0 },
    { "D6CC94F2-998C-40ee-A29E-D9CBED46A145", "Super-Scope", 1 },
    { "91A53739-48CC-425c-89EB-0DB399261FD9", "Dynamic Transform", 0 },
};

}

int32_t CComponentManager::GetInfo(int32_t index, VISUALIZATION_COMPONENT_INFO_EX& info)
{
    info = {};
    if (index < 0 || index >= static_cast<int32_t>(std::size(componentTypes)))
        return -1;
    const ComponentType& type = componentTypes[index];
    std::strncpy(info.guid, type.guid, sizeof info.guid - 1);
    std::strncpy(info.name, type.name, sizeof info.name - 1);
    info.version = 1;
    info.category = type.category;
    info.index = index;
    return 0;
}

void CComponentManager::Fill()
{
    m_infos.Clear();
    VISUALIZATION_COMPONENT_INFO_EX info;
    for (int32_t index = 0; GetInfo(index, info) == 0; ++index)
        m_infos.Add(info);
}

int32_t CComponentManager::FindByGuid(const OQString& guid) const
{
    for (int32_t i = 0; i < m_infos.GetCount(); ++i) {
        if (guid == OQString::FromNarrow(m_infos[i].guid))
            return i;
    }
    return -1;
}

void CComponentManager::List(
    int32_t category, OQStringArray& names, OQNumberArray<int32_t>& indexes) const
{
    names.Clear();
    indexes.Clear();
    OQStringArray texts;
    for (int32_t i = 0; i < m_infos.GetCount(); ++i) {
        if (m_infos[i].category == category)
            texts.Add(OQFormat(u"%s|%d", { m_infos[i].name, i }));
    }
    OQStringArraySort(OQTextIgnoreCase).Sort(texts);
    for (const OQString& text : texts) {
        const int32_t bar = text.ReverseFind(u'|');
        names.Add(text.Left(bar));
        indexes.Add(OQTextToInt(text.GetText() + bar + 1));
    }
}

int32_t CComponentManager::CreateComponent(int32_t index, std::unique_ptr<CVisComponent>& component)
{
    component = CreateVisComponent(index);
    return component ? 0 : -1;
}

std::unique_ptr<CVisComponent> CComponentManager::MakeComponent(int32_t position) const
{
    std::unique_ptr<CVisComponent> component;
    if (position < 0 || position >= m_infos.GetCount())
        return component;
    const VISUALIZATION_COMPONENT_INFO_EX& info = m_infos[position];
    if (CreateComponent(info.index, component) == 0) {
        std::memcpy(component->guid, info.guid, sizeof component->guid);
        std::memcpy(component->name, info.name, sizeof component->name);
    }
    return component;
}
