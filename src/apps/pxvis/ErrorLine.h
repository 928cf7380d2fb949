#pragma once

#include <iosfwd>
#include <string>

namespace pxvis {

// One line on `errors`, with the program's name in front. Names and texts of strangers stand in
// messages: control characters become "?", so that they reach no terminal, and a very long message
// is cut. Gives the exit status of a failure.
int PrintError(std::ostream& errors, const std::string& message);

}
