#pragma once

#include <string>
#include <vector>

namespace pxvis::tools {

// The languages that the environment asks for, best first, as the names of catalogues: "de_AT",
// "de". LANGUAGE is a list and stands in front of the first that is set of LC_ALL, LC_MESSAGES and
// LANG, unless that is "C" or "POSIX". What can't be the name of a language is left out.
std::vector<std::string> UserLanguages();

// "German" for "de" or "de_AT"; null for a language that isn't known here.
const char* EnglishNameOf(const std::string& language);

}
