#pragma once

#include <QString>

namespace pxvis::player {

constexpr qsizetype mostTextUnits = 65536; // of one text that a visualization gets

// A text for a visualization, which frees it; null for an empty one. Too long ones are cut; what is
// no character, half of a pair or a zero, is replaced.
char16_t* HostText(QString text);

}
