#include "apps/player/SongSequence.h"

#include "apps/player/collection/Playlist.h"
#include "apps/player/collection/SongLibrary.h"
#include "os/Clock.h"

#include <QElapsedTimer>

#include <algorithm>
#include <unistd.h>
#include <utility>

namespace pxvis::player {

namespace {

constexpr qint64 beginning = 3000; // ms; so far Previous goes to the song before
// A list may be long and all of it missing. The window is to stay as quick as ever meanwhile.
constexpr int fewFailures = 20; // that are passed over at once
constexpr int skipPause = 30; // ms, between two others
constexpr int skipTime = 8; // ms, for missing files in a row

bool IsMissing(const QUrl& song)
{
    const std::string path = PathOf(song);
    return !path.empty() && access(path.c_str(), F_OK) != 0;
}

qint64 Now()
{
    return os::MonotonicNanoseconds() / 1'000'000;
}

}

SongSequence::SongSequence(Playlist& playlist, Playback& playback, SongLibrary& library)
    : m_playlist(playlist)
    , m_playback(playback)
    , m_library(library)
{
    connect(&playlist, &Playlist::CurrentChanged, this, &SongSequence::OnCurrentChanged);
    connect(&playlist, &Playlist::OrderChanged, this, &SongSequence::UpdateNext);
    connect(&playlist, &Playlist::ModesChanged, this, &SongSequence::UpdateNext);
    connect(&playback, &Playback::SongChanged, this, &SongSequence::OnSongChanged);
    connect(&playback, &Playback::InfoChanged, this, &SongSequence::OnInfo);
    connect(&playback, &Playback::Ended, this, &SongSequence::OnEnded);
    connect(&playback, &Playback::Failed, this, &SongSequence::OnFailed);
    m_skip.setSingleShot(true);
    connect(&m_skip, &QTimer::timeout, this, &SongSequence::Skip);
}

void SongSequence::Play(int row)
{
    TellFailures();
    m_direction = Direction::Forward;
    Open(row, PlayState::Playing, 0);
}

void SongSequence::Open(int row, PlayState state, qint64 position)
{
    if (row < 0 || row >= m_playlist.Count())
        return;
    SetCurrent(row, position);
    m_isPlayWanted = state == PlayState::Playing;
    m_isOpening = true;
    m_isAtEnd = false;
    m_playback.Open(m_playlist.At(row).url, position, state);
    UpdateNext();
    emit SongStarted();
}

void SongSequence::Play()
{
    m_isPlayWanted = true;
    if (m_playback.State() == PlayState::Paused) {
        m_playback.Play();
        return;
    }
    if (m_playback.State() == PlayState::Playing)
        return;
    const int row = m_playlist.Current();
    Play(row < 0 || m_isAtEnd ? m_playlist.First() : row);
}

void SongSequence::Pause()
{
    m_isPlayWanted = false;
    m_playback.Pause();
}

void SongSequence::Stop()
{
    TellFailures();
    m_isPlayWanted = false;
    m_playback.Stop();
}

void SongSequence::Next()
{
    Play(m_playlist.Next(true));
}

void SongSequence::Previous()
{
    const bool isStopped = m_playback.State() == PlayState::Stopped;
    const int row = m_playlist.Previous();
    if (!isStopped && (row < 0 || m_playback.Position() > beginning)) {
        m_playback.Seek(0);
        return;
    }
    Play(row < 0 ? m_playlist.Current() : row);
    m_direction = Direction::Backward;
}

void SongSequence::NoteProgress()
{
    const qint64 position = m_playback.Position();
    const qint64 duration = m_playback.Duration();
    if (position <= 0)
        return;
    TellFailures(); // there is a song that can be played
    m_direction = Direction::Forward;
    if (m_meter.Note(position, duration, Now()))
        Count();
}

void SongSequence::SetCurrent(int row, qint64 position)
{
    m_info = {};
    m_meter.Start(position, Now());
    m_isMoving = true;
    m_playlist.SetCurrent(row);
    m_isMoving = false;
}

void SongSequence::UpdateNext()
{
    const int next = m_playlist.Current() < 0 ? -1 : m_playlist.Next(false);
    m_playback.SetNext(next < 0 ? QUrl() : m_playlist.At(next).url);
}

void SongSequence::Count()
{
    const int row = m_playlist.Current();
    if (row < 0)
        return;
    m_library.NotePlayed(m_playlist.At(row).url);
    emit InfoChanged();
}

void SongSequence::CountEnd()
{
    if (m_meter.NoteEnd(Now()))
        Count();
}

void SongSequence::OnSongChanged()
{
    if (m_isOpening) {
        m_isOpening = false;
        return;
    }
    // The song ended and the next one follows it without a gap.
    CountEnd();
    const int next = m_playlist.Next(false);
    if (next < 0) {
        m_playback.Stop();
        return;
    }
    if (m_playlist.At(next).url != m_playback.Song()) { // the list changed too late
        Open(next, PlayState::Playing, 0);
        return;
    }
    SetCurrent(next, 0);
    UpdateNext();
    emit SongStarted();
}

// Unless it is our doing, the current song was taken from the list: what is current now is played
// in its place.
void SongSequence::OnCurrentChanged()
{
    if (m_isMoving)
        return;
    const int row = m_playlist.Current();
    if (row < 0) {
        m_info = {};
        m_isPlayWanted = false;
        m_playback.Stop();
        emit SongStarted();
    } else if (m_playlist.At(row).url == m_playback.Song()) {
        UpdateNext();
    } else {
        const bool isPlaying = m_playback.State() == PlayState::Playing;
        Open(row, isPlaying ? PlayState::Playing : PlayState::Paused, 0);
    }
}

void SongSequence::OnInfo(const host::SongInfo& info)
{
    const int row = m_playlist.Current();
    if (row < 0)
        return;
    m_info = info;
    Song song = m_playlist.At(row);
    const auto take = [](QString& known, const std::string& text) {
        if (!text.empty())
            known = QString::fromStdString(text);
    };
    take(song.title, info.tags.title);
    take(song.artist, info.tags.artist);
    take(song.album, info.tags.album);
    if (info.durationSeconds > 0)
        song.duration = static_cast<qint64>(info.durationSeconds * 1000);
    song.isRead = true;
    song.isMissing = false;
    m_playlist.Update(song);
    m_playlist.SetFault(song.url, {});
    emit InfoChanged();
}

void SongSequence::OnEnded()
{
    CountEnd();
    TellFailures();
    const int next = m_playlist.Next(false);
    if (next >= 0) { // came into the list at the last moment
        Open(next, PlayState::Playing, 0);
        return;
    }
    End();
}

void SongSequence::End()
{
    m_isAtEnd = true;
    m_isPlayWanted = false;
    emit ListEnded();
}

bool SongSequence::IsAtEnd() const
{
    return m_isAtEnd && m_playlist.Current() >= 0 && m_playlist.Next(true) < 0;
}

bool SongSequence::IsSkipping() const
{
    return m_failures > 0 && m_isPlayWanted;
}

void SongSequence::OnFailed(const QUrl& song, const QString& reason)
{
    m_isOpening = false;
    const int next = m_playlist.Current() < 0 ? -1 : m_playlist.Next(false);
    if (next >= 0 && m_playlist.At(m_playlist.Current()).url != song
        && m_playlist.At(next).url == song) { // was to follow without a gap
        CountEnd();
        SetCurrent(next, 0);
        emit SongStarted();
    }
    const int row = m_playlist.Current();
    if (row < 0 || m_playlist.At(row).url != song)
        return;

    NoteFailure(row, reason);
    // Later, since opening a song may be what fails.
    m_skip.start(m_failures <= fewFailures ? 0 : skipPause);
}

void SongSequence::NoteFailure(int row, const QString& reason)
{
    Song failed = m_playlist.At(row);
    if (m_failures++ == 0)
        m_firstFailure = tr("%1 can't be played: %2").arg(TitleOf(failed), reason);
    failed.isMissing = IsMissing(failed.url);
    m_playlist.Update(failed);
    m_playlist.SetFault(failed.url, failed.isMissing ? QString() : reason);
    if (m_failures == 1)
        emit SkippingChanged();
}

// To the next song that is worth a try.
void SongSequence::Skip()
{
    QElapsedTimer time;
    time.start();
    while (m_failures > 0) { // else something was opened meanwhile
        const int row = m_playlist.Current();
        const int next
            = m_direction == Direction::Forward ? m_playlist.Next(true) : m_playlist.Previous();
        if (!m_isPlayWanted || row < 0 || next < 0 || next == row
            || m_failures >= m_playlist.Count()) {
            const bool isEnd = m_isPlayWanted && row >= 0 && next < 0
                && m_direction == Direction::Forward && m_failures < m_playlist.Count();
            TellFailures();
            if (isEnd)
                End();
        } else if (!IsMissing(m_playlist.At(next).url)) {
            Open(next, PlayState::Playing, 0);
            return;
        } else if (time.elapsed() >= skipTime) {
            m_skip.start(skipPause);
            return;
        } else {
            SetCurrent(next, 0);
            NoteFailure(next, {});
        }
    }
}

void SongSequence::TellFailures()
{
    m_skip.stop();
    const int count = std::exchange(m_failures, 0);
    if (count == 0)
        return;
    emit SkippingChanged();
    if (count == 1)
        emit Message(m_firstFailure);
    else if (count >= m_playlist.Count())
        emit Message(tr("None of the %1 songs can be played. %2")
                         .arg(QString::number(count), m_firstFailure));
    else
        emit Message(tr("%1 (and %2 more)").arg(m_firstFailure, QString::number(count - 1)));
}

}
