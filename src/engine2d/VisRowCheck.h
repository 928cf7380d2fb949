#pragma once

#include "engine2d/CVisRowInfo.h"
#include "foundation/OQStringArray.h"

// What is wrong with the text of a row, for people who write scripts; loading passes over it.
struct CVisRowFault
{
    OQString reason; // in English, without a full stop; empty: nothing
    int32_t position = 0; // in the text, in characters from 1; 0: all of it
};

// A text that stands in the row's map, as a name or as a value, has no fault. `fonts`: the names
// that a font row may have beside "DEFAULT"; null: any.
CVisRowFault CheckRowText(
    const CVisRowInfo& row, const OQString& text, const OQStringArray* fonts = nullptr);

// A stranger's text between quotes, cut where it is long.
OQString QuoteForMessage(const OQString& text);
