#pragma once

#include "foundation/OQStringArray.h"

// Cuts a text into its pages, which a line that holds a lone "|" parts: at the exact text
// "\r\n|\r\n". At most VisLimits::textPages, each at most VisLimits::textUnits long; what is past
// that is left out.
void CutTextPages(const OQString& text, OQStringArray& pages);

// What of a text the limits leave out, for people who write scripts; empty: nothing.
OQString TextPagesFault(const OQString& text);

// The start of a text, at most so many units, without half a surrogate pair at its end.
std::u16string_view TextStart(std::u16string_view text, size_t units);
