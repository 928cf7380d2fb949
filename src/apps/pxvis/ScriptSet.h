#pragma once

#include <string>
#include <vector>

namespace pxvis {

// Script files (*.pxv) that a person names in one of four ways: a file, a folder (all scripts in
// it and below), the name of a script that the user keeps or that is shipped, with or without its
// folder and ending ("Calm/Tide", "tide.pxv"), or the name of such a folder ("Calm"). Case makes no
// difference in names. An empty name means all shipped ones. Paths are UTF-8 and sorted. Empty, and
// one line, if nothing fits.
std::vector<std::string> FindScripts(const std::string& name, std::string& error);

// The one script of that name; empty, and one line, if there is none or more.
std::string FindScript(const std::string& name, std::string& error);

}
