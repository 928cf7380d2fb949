#pragma once

#include "foundation/OQQSort.h"
#include "foundation/OQStringArray.h"

class IOQText;

// Sorts texts as people expect them, by the tools module's comparison; without that module by
// OQString's own.
class OQStringArraySort final : public IOQQSortCompare<OQString>
{
public:
    // Of the OQTextFlags, such as OQTextIgnoreCase.
    explicit OQStringArraySort(int32_t mode);
    OQStringArraySort(int32_t mode, const IOQText* text); // null: OQString's own

    void Sort(OQStringArray& texts) const;

    int Compare(const OQString* a, const OQString* b) const override;

private:
    int32_t m_mode;
    const IOQText* m_text;
};
