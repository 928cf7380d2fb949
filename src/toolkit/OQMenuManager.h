#pragma once

#include "foundation/OQArray.h"
#include "foundation/OQString.h"
#include <pxvis/IOQMenu.h>

#include <memory>

// A menu as a list of entries, which OQMenuWnd shows. One thread at a time; texts are copied.
class OQMenuManager final : public IOQMenu
{
public:
    struct Entry
    {
        int32_t id = 0; // of an item
        OQString text;
        uint32_t flags = 0; // VisMenuFlags
        bool isSeparator = false;
        std::unique_ptr<OQMenuManager> submenu;
    };

    void AddItem(int32_t id, const char16_t* text, uint32_t flags) override;
    void AddSeparator() override;
    OQMenuManager* AddSubmenu(const char16_t* text) override;

    int GetCount() const { return m_entries.GetCount(); }

    const Entry& GetEntry(int index) const { return *m_entries[index]; }

private:
    OQOwnedPtrArray<Entry> m_entries;
};
