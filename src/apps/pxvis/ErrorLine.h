#pragma once

#include <iosfwd>
#include <string>

namespace pxvis {

// One line of a text in which strangers' names and texts stand, UTF-8: control characters become
// "?", so that they reach no terminal, and a very long one is cut.
std::string PrintableLine(const std::string& text);

// A printable line on `errors`, with the program's name in front. Gives the exit status of a
// failure.
int PrintError(std::ostream& errors, const std::string& message);

// The same for what is no failure.
void PrintWarning(std::ostream& errors, const std::string& message);

// The same for options that can't be meant.
int PrintUsageError(std::ostream& errors, const std::string& message);

}
