#include "components/CPendingVisComponent.h"

int32_t CPendingVisComponent::SaveProperties(CVisPropertyList& list)
{
    for (const CVisPropertyRow& row : m_rows)
        list.AddRow(row.Name.GetText(), row.Value, row.Kind, row.Presets);
    return 0;
}

int32_t CPendingVisComponent::LoadProperties(const CVisPropertyList* list)
{
    m_rows.Clear();
    if (list) {
        for (const CVisPropertyRow& row : *list) {
            // The piece keeps and saves its own row.
            if (row.Name != u"OnEquation")
                m_rows.AddRow(row.Name.GetText(), row.Value);
        }
    }
    return CVisComponent::LoadProperties(list);
}

int32_t CPendingVisComponent::Draw(IVisBuffer&, IVisAudioData&)
{
    return -1;
}
