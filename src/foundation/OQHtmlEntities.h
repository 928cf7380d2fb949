#pragma once

#include "foundation/OQString.h"

// Puts characters in place of the entities of an HTML text: 107 names, those of Latin-1 and a few
// more, and numbers of two to five digits, "&#228;" or "&#xe4;". As the result is for display, a
// blank that doesn't break becomes a plain one, a dash "-" and a closing single quote "'". What is
// none of these stays as it stands. Names have case.
OQString DecodeHtmlEntities(const OQString& text);
