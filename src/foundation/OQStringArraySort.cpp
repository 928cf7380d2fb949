#include "foundation/OQStringArraySort.h"

#include "foundation/IOQTools.h"
#include "foundation/OQSiblingModules.h"

OQStringArraySort::OQStringArraySort(int32_t mode)
    : OQStringArraySort(mode, OQToolsText())
{
}

OQStringArraySort::OQStringArraySort(int32_t mode, const IOQText* text)
    : m_mode(mode)
    , m_text(text)
{
}

void OQStringArraySort::Sort(OQStringArray& texts) const
{
    if (texts.GetCount() >= 2)
        OQQSort<OQString>(*this).Sort(texts);
}

int OQStringArraySort::Compare(const OQString* a, const OQString* b) const
{
    if (m_text)
        return m_text->Compare(a->GetText(), b->GetText(), m_mode, 1, -1);
    return m_mode & OQTextIgnoreCase ? a->CompareNoCase(*b) : a->Compare(*b);
}
