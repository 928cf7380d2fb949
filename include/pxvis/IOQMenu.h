#pragma once

#include <cstdint>

enum VisMenuFlags : uint32_t
{
    VisMenuDisabled = 1,
    VisMenuChecked = 8,
};

// A menu of the host's that a visualization adds entries to. Texts are copied. Calls come from the
// host's user-interface thread, during BuildMenu only. Slots: add at the end only.
class IOQMenu
{
public:
    // `flags`: of the flags above. The host hands `id` back in OnMenuCommand.
    virtual void AddItem(int32_t id, const char16_t* text, uint32_t flags) = 0;
    virtual void AddSeparator() = 0;
    // The submenu belongs to this menu; null if the host shows none.
    virtual IOQMenu* AddSubmenu(const char16_t* text) = 0;

protected:
    ~IOQMenu() = default;
};
