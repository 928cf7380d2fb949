#pragma once

#include <QString>

namespace pxvis::player {

constexpr int mostFolderEntries = 4096; // looked at
constexpr int mostFolderPictures = 256;

// The pictures that lie beside a song, such as scans of its cover and booklet: their paths in the
// order of their names, one a line. Empty for no path.
QString FolderPictures(const QString& song);

}
