#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace pxvis {

struct PlayOptions
{
    std::string script; // one, as FindScripts takes it; empty: what the player showed last
    std::vector<std::string> songs; // files and folders; none: with a script the player listens
};

// The command "play": runs the player's program until it ends and gives its exit status, 128 and
// the signal's number if one ended it. Prints what the command "check" finds in the script, at the
// start and whenever it was saved, and that it has no faults. Ctrl-C and other signals to end go to
// the player; the second one ends it at once. However this process ends, the player does as well.
int RunPlay(const PlayOptions& options, std::ostream& errors);

}
