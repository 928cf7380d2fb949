#include "apps/player/display/HostState.h"

#include "apps/player/sound/HeardSound.h"
#include "os/Clock.h"

#include <QFile>

#include <algorithm>
#include <utility>

namespace pxvis::player {

namespace {

constexpr int64_t second = 1'000'000'000; // ns

int32_t WholeSeconds(double seconds)
{
    return seconds > 0 ? static_cast<int32_t>(std::min(seconds, 2e9)) : 0;
}

}

void HostState::SetTrack(const HostTrack& track)
{
    const bool isOther = track.path != m_track.path;
    const bool isOtherPicture = track.info.tags.cover != m_track.info.tags.cover;
    if (isOther || track.info.tags != m_track.info.tags)
        ++m_trackNumber;
    if (isOther || isOtherPicture)
        ++m_pictureNumber;
    m_track = track;
    const host::TrackTags& tags = m_track.info.tags;
    m_picture = { tags.cover.data(), tags.cover.size() };
    if (isOtherPicture)
        m_cover = std::make_unique<host::CoverFile>(tags);
    m_playInfo.playlistPosition = track.position;
    m_playInfo.playlistLength = track.count;
    m_playInfo.totalSeconds = WholeSeconds(track.info.durationSeconds);
    m_playInfo.bitRate = track.info.bitRate / 1000 + (track.info.bitRate % 1000 >= 500);
    m_playInfo.channels = track.info.channels;
    m_playInfo.sampleRate = track.info.sampleRate;
}

void HostState::SetElapsed(double seconds)
{
    m_playInfo.elapsedSeconds = WholeSeconds(seconds);
}

void HostState::SetResting(bool resting)
{
    m_isResting = resting;
    if (resting)
        m_level = 0;
}

void HostState::DrawAwhile()
{
    m_drawUntil = os::MonotonicNanoseconds() + second;
}

bool HostState::TakeFrame(host::AudioRecord& record)
{
    host::AudioRecord heard;
    if (!m_isResting && m_sound && m_sound->Take(heard)) {
        m_record = heard;
        m_hadBeat |= heard.beat != 0;
    } else {
        // The pictures stand still, or move as if the moment lasted.
        m_record.level = 0;
        m_record.beat = 0;
        m_level = 0;
        if (m_isResting || os::MonotonicNanoseconds() >= m_drawUntil)
            return false;
    }
    m_level = m_record.level;
    record = m_record;
    CountFrame();
    return true;
}

void HostState::CountFrame()
{
    const int64_t now = os::MonotonicNanoseconds();
    const int64_t elapsed = now - m_countedSince;
    if (elapsed > second) { // there was a rest
        m_countedSince = now;
        m_counted = 0;
    } else if (++m_counted > 0 && elapsed > second / 2) {
        m_frameRate = static_cast<int32_t>(m_counted * second * 1000 / elapsed);
        m_countedSince = now;
        m_counted = 0;
    }
}

QString HostState::CoverFile() const
{
    return m_cover ? QFile::decodeName(m_cover->Path().c_str()) : QString();
}

const HostPicture* HostState::CoverPicture() const
{
    return m_picture.size > 0 ? &m_picture : nullptr;
}

bool HostState::TakeBeat()
{
    return std::exchange(m_hadBeat, false);
}

}
