#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace pxvis {

struct CheckOptions
{
    std::vector<std::string> scripts; // each as FindScripts takes it
    bool json = false;
    bool flash = false; // look for flashing light, see RunFlashCheck, and for nothing else
    std::string song
        = {}; // for that; empty: the demo song, or a ClickTrack if that isn't installed
};

// The command "check": prints what loading a script passes over in silence, a finding a line,
//   FILE:LINE:COLUMN: Component "Row": message
// or, with json, an object a line,
//   {"file":text,"line":number,"column":number,"component":text|null,"row":text|null,
//    "position":number|null,"message":text}
// where position counts the characters of the row's text from 1. Exit status 1 if there is any.
int RunCheck(const CheckOptions& options, std::ostream& output, std::ostream& errors);

}
