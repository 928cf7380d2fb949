#pragma once

#include "apps/pxvis/VisualSession.h"

#include <iosfwd>
#include <string>

namespace pxvis {

struct FramesOptions
{
    std::string script; // as FindScripts takes it, if that gives one
    VisualSessionSettings session;
};

// The command "frames": one picture for each audio record of the input, the top row first, each
// pixel blue, green, red, alpha. Gives the exit status.
int RunFrames(const FramesOptions& options, std::istream& records, std::ostream& output,
    std::ostream& errors);

}
