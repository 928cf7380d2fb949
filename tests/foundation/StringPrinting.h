#pragma once

#include "foundation/OQString.h"

#include <doctest/doctest.h>

// A failed check shows the text, not a pointer.
template <>
struct doctest::StringMaker<OQString>
{
    static String convert(const OQString& text) { return text.ToUtf8().c_str(); }
};
