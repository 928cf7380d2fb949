#include "apps/player/collection/SongFinder.h"

namespace pxvis::player {

// FIXME: finds nothing yet
struct SongFinder::Work
{
};

SongFinder::SongFinder() = default;
SongFinder::~SongFinder() = default;

}
