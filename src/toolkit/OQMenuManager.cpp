#include "toolkit/OQMenuManager.h"

void OQMenuManager::AddItem(int32_t id, const char16_t* text, uint32_t flags)
{
    m_entries.Add(new Entry { .id = id, .text = text, .flags = flags, .submenu = nullptr });
}

void OQMenuManager::AddSeparator()
{
    m_entries.Add(new Entry { .text = OQString(), .isSeparator = true, .submenu = nullptr });
}

OQMenuManager* OQMenuManager::AddSubmenu(const char16_t* text)
{
    auto submenu = std::make_unique<OQMenuManager>();
    OQMenuManager* const added = submenu.get();
    m_entries.Add(new Entry { .text = text, .submenu = std::move(submenu) });
    return added;
}
