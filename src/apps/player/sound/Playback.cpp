#include "apps/player/sound/Playback.h"

#include "apps/player/sound/EndingPipelines.h"
#include "apps/player/sound/HeardSound.h"
#include "apps/player/sound/SongPipeline.h"
#include "apps/player/sound/SoundOutput.h"
#include "host/TagReader.h"

#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <mutex>
#include <utility>

namespace pxvis::player {

using host::AudioRecord;
using host::SongInfo;

namespace {

constexpr qint64 Millisecond = 1'000'000; // ns
constexpr int WatchInterval = 1000; // ms
constexpr int StuckSeconds = 5; // of a song that played
constexpr int OpeningSeconds = 12; // disks sleep
constexpr int OutputSeconds = 3;
constexpr int ProbeSeconds = 3;
constexpr int VolumeEchoMs = 1000;
constexpr int EndPatienceMs = 2000;

// Byte by byte: a file's name need not be UTF-8.
std::string LocalPath(const QUrl& song)
{
    if (!song.isLocalFile())
        return {};
    return QByteArray::fromPercentEncoding(song.path(QUrl::FullyEncoded).toLatin1()).toStdString();
}

}

struct Playback::Pipeline final : SongEvents, HeardSound
{
    Pipeline(Playback& owner, const QString& sink);
    ~Pipeline();

    // For the thread that draws.
    bool Take(AudioRecord& record) override;

    void OnSongStart(SongPipeline& pipeline, const std::string& path, bool follows) override;
    void OnFormat(SongPipeline& pipeline, const SongFormat& format) override;
    void OnTags(SongPipeline& pipeline, const GstTagList* tags) override;
    void OnPlaced(SongPipeline& pipeline) override;
    void OnEnd(SongPipeline& pipeline) override;
    void OnFault(SongPipeline& pipeline, const QString& reason) override;
    void OnNextFault(SongPipeline& pipeline) override;
    void OnOutputFault(SongPipeline& pipeline, bool goesOn) override;
    void OnVolume(SongPipeline& pipeline, double amplitude, bool isMuted) override;

    void Start(const QUrl& url, qint64 position);
    void StartAgain(); // the same song at the same place
    void Drop();
    void SetState(PlayState state);
    void Fail(const QString& reason);
    void TellInfo();
    void TellOutput(const QString& reason);
    void Watch();
    void Probe();
    qint64 Now();

    double Amplitude() const { return volume * volume * volume; }

    Playback& owner;
    const std::string sinkText;
    const std::shared_ptr<Mailbox> mailbox = std::make_shared<Mailbox>();

    std::mutex mutex; // the three below, for the thread that draws
    std::shared_ptr<SongPipeline> heard; // the same as `current`
    bool isPlaying = false;
    qint64 delay = 0; // ns

    std::shared_ptr<SongPipeline> current; // null: nothing plays
    EndingPipelines<SongPipeline> ending;
    PlayState state = PlayState::Stopped;
    QUrl song;
    QUrl next;
    bool isNextBad = false; // it can't follow without a gap
    bool isAnnounced = false; // the start of `song` was told
    bool isSeeking = false;
    SongInfo info;
    SongFormat format;
    qint64 lastPosition = 0; // ms

    double volume = 1;
    bool isMuted = false;
    qint64 volumeSetAt = -VolumeEchoMs;
    std::string device;
    bool isOutputLost = false;
    QString outputFault;

    QTimer watch;
    int watches = 0;
    qint64 watchedPosition = -1;
    int stuck = 0; // watches without a move
    std::unique_ptr<CommandThread> probe; // null: none under way
};

Playback::Pipeline::Pipeline(Playback& owner, const QString& sink)
    : owner(owner)
    , sinkText(sink.toStdString())
{
    watch.setInterval(WatchInterval);
    QObject::connect(&watch, &QTimer::timeout, [this] { Watch(); });
}

Playback::Pipeline::~Pipeline()
{
    mailbox->Close();
    Drop();
    if (probe) {
        probe->Finish();
        probe->WaitForEnd(EndPatienceMs);
    }
}

bool Playback::Pipeline::Take(AudioRecord& record)
{
    record = {};
    std::shared_ptr<SongPipeline> pipeline;
    qint64 late = 0;
    {
        const std::lock_guard lock(mutex);
        if (!isPlaying)
            return false;
        pipeline = heard;
        late = delay;
    }
    const std::optional<int64_t> now = pipeline ? pipeline->HeardTime() : std::nullopt;
    if (!now)
        return pipeline != nullptr; // it is just about to be heard
    return pipeline->Analysis().Take(*now - late, record);
}

void Playback::Pipeline::Drop()
{
    ending.Take(std::exchange(current, nullptr));
    const std::lock_guard lock(mutex);
    heard = nullptr;
}

void Playback::Pipeline::SetState(PlayState wanted)
{
    {
        const std::lock_guard lock(mutex);
        isPlaying = wanted == PlayState::Playing;
    }
    stuck = 0;
    wanted == PlayState::Playing ? watch.start() : watch.stop();
    if (std::exchange(state, wanted) != wanted)
        emit owner.StateChanged();
}

void Playback::Pipeline::Start(const QUrl& url, qint64 position)
{
    Drop();
    song = url;
    next.clear();
    isNextBad = false;
    isAnnounced = false;
    isSeeking = false;
    info = {};
    format = {};
    lastPosition = std::max<qint64>(position, 0);
    StartAgain();
}

void Playback::Pipeline::StartAgain()
{
    Drop();
    SongOrder order;
    order.path = LocalPath(song);
    order.position = lastPosition * Millisecond;
    order.plays = state == PlayState::Playing;
    order.device = device;
    order.sink = sinkText;
    order.isSilent = isOutputLost;
    order.amplitude = Amplitude();
    order.isMuted = isMuted;
    current = std::make_shared<SongPipeline>(std::move(order), mailbox, *this);
    if (!isNextBad)
        current->SetNext(LocalPath(next));
    current->Open();
    stuck = 0;
    watchedPosition = -1;
    if (isOutputLost)
        Probe();
    const std::lock_guard lock(mutex);
    heard = current;
}

void Playback::Pipeline::Fail(const QString& reason)
{
    const QUrl failed = song;
    Drop();
    SetState(PlayState::Stopped);
    emit owner.Failed(failed, reason);
}

qint64 Playback::Pipeline::Now()
{
    const int64_t position = current ? current->Position() : -1;
    if (position >= 0)
        lastPosition = position / Millisecond;
    return lastPosition;
}

void Playback::Pipeline::OnSongStart(SongPipeline& pipeline, const std::string& path, bool follows)
{
    if (follows) {
        const QUrl wanted = std::exchange(next, {});
        if (path != LocalPath(wanted)) {
            // It was asked for, and then something else, too late.
            next = wanted;
            OnEnd(pipeline);
            return;
        }
        song = wanted;
        isAnnounced = false;
    }
    if (isAnnounced)
        return;
    isAnnounced = true;
    info = {};
    format = {};
    pipeline.SetNext(LocalPath(next));
    pipeline.Analysis().AnnounceSong();
    emit owner.SongChanged();
}

void Playback::Pipeline::OnFormat(SongPipeline&, const SongFormat& told)
{
    const bool isOther = told.duration != format.duration;
    format = told;
    info.durationSeconds
        = format.duration > 0 ? static_cast<double>(format.duration) / GST_SECOND : 0;
    info.channels = format.channels;
    info.sampleRate = format.sampleRate;
    if (isOther)
        emit owner.DurationChanged();
    TellInfo();
}

void Playback::Pipeline::OnTags(SongPipeline&, const GstTagList* tags)
{
    if (host::MergeTags(tags, info))
        TellInfo();
}

void Playback::Pipeline::TellInfo()
{
    SongInfo told = info;
    if (told.tags.title.empty())
        told.tags.title = QFileInfo(song.toLocalFile()).completeBaseName().toStdString();
    emit owner.InfoChanged(told);
}

void Playback::Pipeline::OnPlaced(SongPipeline& pipeline)
{
    if (!isOutputLost && pipeline.HasDevice())
        TellOutput({});
    if (std::exchange(isSeeking, false))
        emit owner.Seeked(Now());
}

void Playback::Pipeline::OnEnd(SongPipeline&)
{
    if (!next.isEmpty()) {
        Start(std::exchange(next, {}), 0);
        return;
    }
    Drop();
    lastPosition = 0;
    SetState(PlayState::Stopped);
    emit owner.Ended();
}

void Playback::Pipeline::OnFault(SongPipeline&, const QString& reason)
{
    Fail(reason);
}

// The song goes on by itself; the other one is opened behind it and then tells its fault.
void Playback::Pipeline::OnNextFault(SongPipeline&)
{
    Now();
    isNextBad = true;
    StartAgain();
}

void Playback::Pipeline::TellOutput(const QString& reason)
{
    if (std::exchange(outputFault, reason) != reason)
        emit owner.OutputLost(reason);
}

void Playback::Pipeline::OnOutputFault(SongPipeline&, bool goesOn)
{
    Now();
    isOutputLost = true;
    watches = 0;
    if (!goesOn)
        StartAgain();
    TellOutput(goesOn ? tr("No sound device was found: playing silently.")
                      : tr("The sound device is gone: playing silently."));
}

void Playback::Pipeline::OnVolume(SongPipeline&, double amplitude, bool muted)
{
    // What was set here comes back, late.
    constexpr double rounding = 0.004;
    const double told = std::cbrt(std::clamp(amplitude, 0.0, 1.0));
    const qint64 now = g_get_monotonic_time() / 1000;
    if (now - volumeSetAt < VolumeEchoMs
        || (std::abs(told - volume) < rounding && muted == isMuted))
        return;
    volume = told;
    isMuted = muted;
    emit owner.VolumeChanged();
}

// Once a second while it plays.
void Playback::Pipeline::Watch()
{
    if (!current)
        return;
    const qint64 position = Now();
    stuck = position == std::exchange(watchedPosition, position) ? stuck + 1 : 0;
    const int patience = current->IsPlaced() ? StuckSeconds
        : current->WaitsForOutput()          ? OutputSeconds
                                             : OpeningSeconds;
    if (stuck >= patience) {
        if (isOutputLost)
            Fail(tr("It can't be decoded: nothing comes of it."));
        else
            OnOutputFault(*current, false);
    } else if (isOutputLost && ++watches % ProbeSeconds == 0) {
        Probe();
    }
}

void Playback::Pipeline::Probe()
{
    if (probe || !sinkText.empty())
        return;
    probe = std::make_unique<CommandThread>();
    probe->Post([this, box = mailbox, wanted = device] {
        const bool can = CanPlay(wanted);
        box->Post([this, can, wanted] {
            probe->Finish();
            probe = nullptr;
            if (!can || !isOutputLost || wanted != device)
                return;
            isOutputLost = false;
            if (current) {
                Now();
                StartAgain();
            }
        });
    });
}

Playback::Playback(const QString& sink)
    : m_pipeline(std::make_unique<Pipeline>(*this, sink))
{
}

Playback::~Playback() = default;

void Playback::Open(const QUrl& song, qint64 position, PlayState state)
{
    m_pipeline->Drop();
    if (state == PlayState::Stopped) {
        m_pipeline->song = song;
        m_pipeline->next.clear();
        m_pipeline->lastPosition = 0;
        m_pipeline->SetState(state);
        return;
    }
    m_pipeline->SetState(state);
    m_pipeline->Start(song, position);
}

void Playback::SetNext(const QUrl& song)
{
    m_pipeline->next = song;
    m_pipeline->isNextBad = false;
    if (m_pipeline->current)
        m_pipeline->current->SetNext(LocalPath(song));
}

void Playback::Play()
{
    if (m_pipeline->state == PlayState::Playing || m_pipeline->song.isEmpty())
        return;
    if (m_pipeline->state == PlayState::Stopped) {
        Open(m_pipeline->song);
        return;
    }
    m_pipeline->SetState(PlayState::Playing);
    m_pipeline->current->SetPlaying(true);
}

void Playback::Pause()
{
    if (m_pipeline->state != PlayState::Playing)
        return;
    m_pipeline->Now();
    m_pipeline->SetState(PlayState::Paused);
    m_pipeline->current->SetPlaying(false);
}

void Playback::Stop()
{
    m_pipeline->Drop();
    m_pipeline->lastPosition = 0;
    m_pipeline->SetState(PlayState::Stopped);
}

void Playback::Seek(qint64 position)
{
    Pipeline& pipeline = *m_pipeline;
    if (!pipeline.current)
        return;
    position = std::max<qint64>(position, 0);
    if (pipeline.format.duration >= 0)
        position = std::min(position, pipeline.format.duration / Millisecond);
    pipeline.lastPosition = position;
    pipeline.isSeeking = true;
    // The song that follows is being decoded already, and would be what is sought in.
    if (pipeline.current->TakenNext().empty())
        pipeline.current->Seek(position * Millisecond);
    else
        pipeline.StartAgain();
}

PlayState Playback::State() const
{
    return m_pipeline->state;
}

QUrl Playback::Song() const
{
    return m_pipeline->song;
}

qint64 Playback::Position() const
{
    return m_pipeline->Now();
}

qint64 Playback::Duration() const
{
    const qint64 duration = m_pipeline->format.duration;
    return duration >= 0 ? duration / Millisecond : -1;
}

bool Playback::IsSeekable() const
{
    return m_pipeline->format.isSeekable;
}

double Playback::Volume() const
{
    return m_pipeline->volume;
}

void Playback::SetVolume(double volume)
{
    volume = volume > 0 ? std::min(volume, 1.0) : 0;
    if (volume == m_pipeline->volume)
        return;
    m_pipeline->volume = volume;
    m_pipeline->volumeSetAt = g_get_monotonic_time() / 1000;
    if (m_pipeline->current)
        m_pipeline->current->SetVolume(m_pipeline->Amplitude(), m_pipeline->isMuted);
    emit VolumeChanged();
}

bool Playback::IsMuted() const
{
    return m_pipeline->isMuted;
}

void Playback::SetMuted(bool muted)
{
    if (muted == m_pipeline->isMuted)
        return;
    m_pipeline->isMuted = muted;
    m_pipeline->volumeSetAt = g_get_monotonic_time() / 1000;
    if (m_pipeline->current)
        m_pipeline->current->SetVolume(m_pipeline->Amplitude(), muted);
    emit VolumeChanged();
}

void Playback::SetOutput(const QString& device)
{
    const std::string wanted = device.toStdString();
    if (std::exchange(m_pipeline->device, wanted) == wanted)
        return;
    m_pipeline->isOutputLost = false;
    if (!m_pipeline->current)
        return;
    m_pipeline->Now();
    m_pipeline->StartAgain();
}

void Playback::SetDelay(int delay)
{
    const std::lock_guard lock(m_pipeline->mutex);
    m_pipeline->delay = delay * Millisecond;
}

HeardSound& Playback::Heard()
{
    return *m_pipeline;
}

}
