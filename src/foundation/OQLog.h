#pragma once

#include "foundation/IOQTools.h"
#include "foundation/OQFormat.h"

#include <initializer_list>

// Writes one line to the log of the tools module; without that module nothing happens. `scope` is
// "Class::Operation", `text` and `arguments` are those of OQFormat. Any thread; nothing is thrown.
void OQLog(OQLogLevel level, const OQChar* scope, const OQChar* text,
    std::initializer_list<OQFormatArgument> arguments = {}) noexcept;

// Whether a line of that level would be written anywhere, for what costs something to say.
bool OQLogIsOn(OQLogLevel level) noexcept;
