#pragma once

#include "host/TrackTags.h"

#include <pxvis/IOQVisualizationHost.h>

#include <QDateTime>
#include <QString>

#include <memory>

namespace pxvis::player {

class HeardSound;
class HostState;

// The current track, as scripts and pages can show it.
struct HostTrack
{
    host::SongInfo info; // tags, cover and format; a title in any case
    QString path;
    int playCount = 0;
    QDateTime lastPlayed; // before this time; invalid: never
    int rating = 0; // 0: none, 1 to 5
    int position = 0; // in the playlist, from 1
    int count = 0; // of the playlist
};

// The player, as the visualizations see it: answers every property and value of the contract. Lives
// longer than every visualization that has it. User-interface thread, which also draws.
class VisualHost final : public IOQVisualizationHost
{
public:
    VisualHost();
    ~VisualHost();

    IOQHostConnection* Connect(OQVisualizationBase* self) override;

    void SetSound(HeardSound* sound); // not owned; null: nothing is heard
    // To visualizations it is another track if the path or a tag is another one.
    void SetTrack(const HostTrack& track);
    void SetElapsed(double seconds);
    // Whether the pictures are to rest, whatever is heard: nobody sees them.
    void SetResting(bool resting);
    // Lets the pictures move for a second though nothing is heard: a script that was just chosen,
    // or a window that got another size, has no picture yet.
    void DrawAwhile();

    // The cover as a file, "" without one; until the next track.
    QString CoverFile() const;

    // Of the last frame, for people: 0 to 255, and whether there was a beat since the last call.
    int Level() const;
    bool TakeBeat();

private:
    std::shared_ptr<HostState> m_state;
};

}
