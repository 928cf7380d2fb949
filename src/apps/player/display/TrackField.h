#pragma once

#include <QString>

namespace pxvis::player {

struct HostTrack;

// A field of the track by the name that pages and scenes know it by, whatever its case: "Artist",
// "Name", "Date (year)" ... Written for people. Empty if it isn't known, or there is no such field.
QString TrackField(const HostTrack& track, const QString& name);

}
