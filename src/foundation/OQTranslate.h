#pragma once

#include "foundation/OQString.h"

// Puts the user's language in place of an English text, by the tools module; without that module,
// and without a translation, the text stays. What stands in "%s" and the like is filled in after.
void OQTranslate(OQString& text) noexcept;

// The same for a text in the code.
OQString OQTranslated(const OQChar* text);
