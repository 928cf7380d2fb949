#pragma once

#include "foundation/OQString.h"

#include <cstdint>

class OQBasicWnd;
class OQMenuManager;

// Shows a menu as a popup and waits for a choice, while windows go on painting. The window's thread
// only.
class OQMenuWnd
{
public:
    // At a position in the owner's client area, moved as far as the screen demands. False if
    // nothing was chosen, or the menu can't be shown.
    bool Show(const OQMenuManager& menu, OQBasicWnd& owner, int32_t x, int32_t y);

    int32_t GetChosenId() const { return m_chosenId; } // 0 if nothing was chosen

    const OQString& GetChosenText() const { return m_chosenText; }

private:
    int32_t m_chosenId = 0;
    OQString m_chosenText;
};
