#include "apps/player/Player.h"

#include <QFile>

#include "apps/player/Session.h"

#include <algorithm>

namespace pxvis::player {

namespace {

constexpr int tickInterval = 250; // ms; scripts and people see whole seconds
constexpr int unseenInterval = 1000; // ms
constexpr int keepInterval = 30'000; // ms
constexpr char listeningSetting[] = "Listening Device";

PlayerStatus::State StateOf(PlayState state)
{
    switch (state) {
    case PlayState::Playing:
        return PlayerStatus::State::Playing;
    case PlayState::Paused:
        return PlayerStatus::State::Paused;
    case PlayState::Stopped:
        break;
    }
    return PlayerStatus::State::Stopped;
}

PlayerStatus::Loop LoopOf(RepeatMode mode)
{
    switch (mode) {
    case RepeatMode::One:
        return PlayerStatus::Loop::Track;
    case RepeatMode::All:
        return PlayerStatus::Loop::Playlist;
    case RepeatMode::None:
        break;
    }
    return PlayerStatus::Loop::None;
}

}

Player::Player(const QString& sink, const QString& source)
    : m_library(SongLibrary::DefaultPath())
    , m_playback(sink)
    , m_listening(source)
    , m_output(m_devices, m_playback, m_listening, m_settings)
    , m_sequence(m_playlist, m_playback, m_library)
    , m_session(std::make_unique<Session>(m_playlist, m_playback, m_settings))
{
    m_keep.setInterval(keepInterval);
    Connect();
    UpdateSource();
}

Player::~Player()
{
    Remember();
    m_host.SetSound(nullptr);
}

void Player::Connect()
{
    connect(&m_playlist, &Playlist::OrderChanged, this, &Player::TellTrack);
    connect(&m_playlist, &Playlist::ModesChanged, this, &Player::StatusChanged);
    connect(&m_playlist, &Playlist::UrlsDropped, this, &Player::Add);

    connect(&m_playback, &Playback::StateChanged, this, [this] {
        UpdateSource();
        emit PositionChanged();
        emit StatusChanged();
    });
    connect(&m_playback, &Playback::DurationChanged, this, [this] {
        emit PositionChanged();
        emit StatusChanged();
    });
    connect(&m_playback, &Playback::Seeked, this, [this](qint64 position) {
        m_host.SetElapsed(static_cast<double>(position) / 1000.0);
        emit PositionChanged();
        emit Seeked(position * 1000);
    });
    connect(&m_playback, &Playback::VolumeChanged, this, &Player::StatusChanged);
    connect(&m_playback, &Playback::OutputLost, this, &Player::OutputLost);

    connect(&m_sequence, &SongSequence::SongStarted, this, [this] {
        const int row = m_playlist.Current();
        m_lastPlayed = row < 0 ? QDateTime() : m_library.LastPlayed(m_playlist.At(row).url);
        m_host.SetElapsed(static_cast<double>(m_playback.Position()) / 1000.0);
        TellTrack();
        emit SongStarted();
        emit PositionChanged();
    });
    connect(&m_sequence, &SongSequence::InfoChanged, this, &Player::TellTrack);
    connect(&m_sequence, &SongSequence::SkippingChanged, this, &Player::StatusChanged);
    connect(&m_sequence, &SongSequence::ListEnded, this, &Player::StatusChanged);
    connect(&m_sequence, &SongSequence::Message, this, &Player::Message);

    connect(&m_listening, &Listening::Failed, this, &Player::Message);
    connect(&m_listening, &Listening::Started, this, [this](const QString& device) {
        m_listeningName = device;
        TellTrack();
    });
    connect(&m_finder, &SongFinder::Found, this, &Player::OnFound);
    connect(&m_finder, &SongFinder::Read, &m_playlist, &Playlist::Update);
    connect(&m_tick, &QTimer::timeout, this, &Player::OnTick);
    connect(&m_keep, &QTimer::timeout, this, &Player::Remember);
}

void Player::Restore()
{
    QString fault;
    const Session::Place place = m_session->Restore(fault);
    QList<Song> unread;
    for (int row = 0; row < m_playlist.Count(); ++row) {
        if (!m_playlist.At(row).isRead)
            unread.append(m_playlist.At(row));
    }
    if (!unread.isEmpty())
        m_finder.ReadTags(unread);
    if (place.row >= 0)
        m_sequence.Open(place.row, PlayState::Paused, place.position);
    m_keep.start();

    QStringList faults { m_settings.Warning(), m_library.Warning(), fault };
    faults.removeAll(QString());
    if (!faults.isEmpty())
        emit Message(faults.join(QStringLiteral("; "))); // the last one alone would be seen
}

void Player::Remember()
{
    QString fault;
    if (!m_session->Keep(fault))
        emit Message(fault);
}

PlayerStatus Player::Status() const
{
    PlayerStatus status;
    status.state = StateOf(m_playback.State());
    status.loop = LoopOf(m_playlist.Repeat());
    status.isShuffled = m_playlist.IsShuffled();
    status.volume = m_playback.Volume();
    status.isFullScreen = m_isFullScreen;
    status.canPlay = m_playlist.Count() > 0;
    status.canGoNext = m_playlist.Next(true) >= 0;
    const int row = m_playlist.Current();
    if (row < 0)
        return status;

    const Song& song = m_playlist.At(row);
    status.canSeek = m_playback.IsSeekable();
    status.canGoPrevious = m_playlist.Previous() >= 0;
    status.trackNumber = m_playlist.NumberAt(row);
    status.url = song.url;
    status.title = TitleOf(song);
    status.artist = song.artist;
    status.album = song.album;
    status.coverFile = m_host.CoverFile();
    const qint64 duration = m_playback.Duration() >= 0 ? m_playback.Duration() : song.duration;
    status.length = duration >= 0 ? duration * 1000 : -1;
    return status;
}

qint64 Player::Position() const
{
    return m_playback.Position() * 1000;
}

void Player::Raise()
{
    emit RaiseAsked();
}

void Player::Quit()
{
    emit QuitAsked();
}

void Player::Play()
{
    StopListening();
    m_sequence.Play();
}

void Player::Pause()
{
    m_sequence.Pause();
}

void Player::Stop()
{
    StopListening();
    m_sequence.Stop();
}

void Player::TogglePlay()
{
    if (m_playback.State() == PlayState::Playing)
        Pause();
    else
        Play();
}

void Player::Next()
{
    StopListening();
    m_sequence.Next();
}

void Player::Previous()
{
    StopListening();
    m_sequence.Previous();
}

void Player::RateSong(const QUrl& song, int rating)
{
    m_library.SetRating(song, rating);
    TellTrack();
}

void Player::SeekTo(qint64 position)
{
    m_playback.Seek(position / 1000);
}

void Player::SeekBy(qint64 milliseconds)
{
    if (m_playback.IsSeekable())
        m_playback.Seek(std::max<qint64>(m_playback.Position() + milliseconds, 0));
}

void Player::OpenUrl(const QUrl& url)
{
    Open({ url });
}

void Player::SetVolume(double volume)
{
    m_playback.SetVolume(std::clamp(volume, 0.0, 1.0));
}

void Player::SetMuted(bool muted)
{
    m_playback.SetMuted(muted);
}

bool Player::IsMuted() const
{
    return m_playback.IsMuted();
}

void Player::SetShuffled(bool shuffled)
{
    m_playlist.SetShuffled(shuffled);
}

void Player::SetLoop(PlayerStatus::Loop loop)
{
    m_playlist.SetRepeat(loop == PlayerStatus::Loop::Track ? RepeatMode::One
            : loop == PlayerStatus::Loop::Playlist         ? RepeatMode::All
                                                           : RepeatMode::None);
}

void Player::SetFullScreen(bool fullScreen)
{
    emit FullScreenAsked(fullScreen);
}

void Player::NoteFullScreen(bool fullScreen)
{
    m_isFullScreen = fullScreen;
    emit StatusChanged();
}

void Player::SetSeen(bool seen)
{
    if (seen == m_isSeen)
        return;
    m_isSeen = seen;
    UpdateSource();
}

void Player::Open(const QList<QUrl>& urls)
{
    for (const QUrl& url : urls)
        m_library.NoteOpened(url);
    m_findings.insert(m_finder.Find(urls), { true, -1 });
}

void Player::Add(const QList<QUrl>& urls, int row)
{
    m_findings.insert(m_finder.Find(urls), { false, row });
}

void Player::OnFound(int number, const QList<Song>& songs, const QStringList& faults)
{
    const Finding finding = m_findings.take(number);
    if (!faults.isEmpty()) {
        emit Message(faults.size() == 1
                ? faults.first()
                : tr("%1 (and %n more)", nullptr, static_cast<int>(faults.size()) - 1)
                      .arg(faults.first()));
    }
    if (songs.isEmpty())
        return;

    if (finding.plays)
        PlayFound(songs);
    else
        Insert(songs, finding.row);
}

void Player::Insert(QList<Song> songs, int row)
{
    if (m_playlist.Insert(songs, row) < songs.size())
        emit Message(tr("The playlist is full: it holds %1 songs").arg(Playlist::mostSongs));
    songs.removeIf([](const Song& song) { return song.isRead; });
    m_finder.ReadTags(songs);
}

// Songs that are in the list already (the first row of each counts) are played there if they follow
// each other as they were opened, as one alone does; else all come behind the others.
void Player::PlayFound(const QList<Song>& songs)
{
    QMultiHash<QUrl, int> known;
    for (int row = m_playlist.Count() - 1; row >= 0; --row)
        known.insert(m_playlist.At(row).url, row);
    QList<Song> added;
    QList<int> rows;
    for (const Song& song : songs) {
        if (known.contains(song.url)) {
            rows.append(known.take(song.url)); // the first one that is left
        } else {
            rows.append(m_playlist.Count() + static_cast<int>(added.size()));
            added.append(song);
        }
    }
    Insert(added, -1);
    rows.removeIf([this](int row) { return row >= m_playlist.Count(); });
    if (rows.isEmpty())
        return;
    int first = rows.first();
    if (rows.last() - first != rows.size() - 1 || !std::is_sorted(rows.cbegin(), rows.cend())) {
        m_playlist.MoveToEnd(rows);
        first = m_playlist.Count() - static_cast<int>(rows.size());
    }
    PlayRow(first);
}

void Player::PlayRow(int row)
{
    StopListening();
    m_sequence.Play(row);
}

void Player::TellTrack()
{
    HostTrack track;
    const int row = m_playlist.Current();
    if (IsListening()) {
        track.info.tags.title = tr("What the computer plays").toStdString();
    } else if (row >= 0) {
        const Song& song = m_playlist.At(row);
        track.info = m_sequence.Info();
        track.info.tags.title = TitleOf(song).toStdString();
        track.info.tags.artist = song.artist.toStdString();
        track.info.tags.album = song.album.toStdString();
        if (track.info.durationSeconds <= 0 && song.duration > 0)
            track.info.durationSeconds = static_cast<double>(song.duration) / 1000.0;
        track.path = QFile::decodeName(PathOf(song.url).c_str());
        track.playCount = m_library.PlayCount(song.url);
        track.lastPlayed = m_lastPlayed;
        track.rating = m_library.Rating(song.url);
        track.position = row + 1;
        track.count = m_playlist.Count();
    }
    m_host.SetTrack(track);
    emit TrackChanged();
    emit StatusChanged();
}

void Player::OnTick()
{
    m_host.SetElapsed(static_cast<double>(m_playback.Position()) / 1000.0);
    m_sequence.NoteProgress();
    emit PositionChanged();
}

void Player::Listen(const QString& device)
{
    m_sequence.Pause();
    m_settings.SetText(listeningSetting, device);
    m_output.NoteListening(device);
    m_listeningName.clear();
    m_listening.Start(device);
    UpdateSource();
    TellTrack();
    emit ListeningChanged();
    emit SongStarted();
}

void Player::SetListeningDevice(const QString& device)
{
    if (IsListening())
        Listen(device);
    else
        m_settings.SetText(listeningSetting, device);
}

void Player::StopListening()
{
    if (!IsListening())
        return;
    m_listening.Stop();
    UpdateSource();
    TellTrack();
    emit ListeningChanged();
}

bool Player::IsListening() const
{
    return m_listening.IsOn();
}

bool Player::IsSkipping() const
{
    return m_sequence.IsSkipping();
}

bool Player::IsAtEnd() const
{
    return !IsListening() && m_sequence.IsAtEnd();
}

QString Player::ListeningDevice() const
{
    return m_settings.Text(listeningSetting);
}

QString Player::ListeningName() const
{
    return m_listeningName.isEmpty() ? tr("What the computer plays") : m_listeningName;
}

void Player::UpdateSource()
{
    const bool isPlaying = m_playback.State() == PlayState::Playing;
    const int interval = m_isSeen ? tickInterval : unseenInterval;
    if (!isPlaying)
        m_tick.stop();
    else if (!m_tick.isActive() || m_tick.interval() != interval)
        m_tick.start(interval);
    m_host.SetSound(IsListening() ? &m_listening.Heard() : &m_playback.Heard());
    m_inhibitor.SetOn(m_isSeen && (isPlaying || IsListening()));
}

}
