#include "apps/player/display/HostAudioData.h"

#include "apps/player/display/HostState.h"
#include "apps/player/display/HostText.h"
#include "apps/player/display/TrackField.h"
#include "host/RecordAudioData.h"

#include <pxvis/SysString.h>

#include <utility>

namespace pxvis::player {

// A new script loads the cover by itself.
HostAudioData::HostAudioData(std::shared_ptr<HostState> state)
    : m_state(std::move(state))
    , m_pictureNumber(m_state->PictureNumber())
{
}

HostAudioData::~HostAudioData() = default;

int32_t HostAudioData::Refresh()
{
    if (!m_state->TakeFrame(m_record))
        return -1;
    m_record.change = m_pictureNumber != m_state->PictureNumber();
    m_pictureNumber = m_state->PictureNumber();
    return 0;
}

void HostAudioData::Reserved() { }

const VisAudioBlock* HostAudioData::GetData()
{
    return &m_record.block;
}

int32_t HostAudioData::GetValue(int32_t which)
{
    return host::AudioValue(m_record, m_state->FrameRate(), which);
}

const void* HostAudioData::GetPlayInfo()
{
    return &m_state->PlayInfo();
}

char16_t* HostAudioData::GetTrackField(int32_t which)
{
    switch (which) {
    case VisTrackFieldArtist:
        return HostText(TrackField(m_state->Track(), "Artist"));
    case VisTrackFieldAlbum:
        return HostText(TrackField(m_state->Track(), "Album"));
    case VisTrackFieldName:
        return HostText(TrackField(m_state->Track(), "Name"));
    case VisTrackFieldYear:
        return HostText(TrackField(m_state->Track(), "Date (year)"));
    case VisTrackFieldCoverFile:
        return HostText(m_state->CoverFile());
    case VisTrackFieldNotes:
        return HostText(TrackField(m_state->Track(), "Notes"));
    case VisTrackFieldLyrics:
        return HostText(TrackField(m_state->Track(), "Lyrics"));
    default: // songs have no custom fields here
        return nullptr;
    }
}

// This player has no expressions of its own: a song's video shows the same texts.
char16_t* HostAudioData::ExpandText(const char16_t* text)
{
    return SysAllocString(text);
}

}
