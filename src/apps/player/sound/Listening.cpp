#include "apps/player/sound/Listening.h"

#include "apps/player/sound/CapturePipeline.h"
#include "apps/player/sound/EndingPipelines.h"
#include "apps/player/sound/HeardSound.h"
#include "apps/player/sound/SoundDevices.h"

#include <QTimer>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <utility>

namespace pxvis::player {

namespace {

constexpr int RetryInterval = 2000; // ms
constexpr int RestInterval = 1000; // ms that nobody took sound for, so that it may come seldom
constexpr QLatin1String AnyMonitor("@DEFAULT_MONITOR@"); // as the server calls it

}

struct Listening::Pipeline final : CaptureEvents, HeardSound
{
    Pipeline(Listening& owner, const QString& source);
    ~Pipeline();

    // For the thread that draws.
    bool Take(host::AudioRecord& record) override;

    void OnCapture(CapturePipeline& pipeline) override;
    void OnCaptureFault(CapturePipeline& pipeline, bool hasServer) override;

    void Start();
    void Stop();
    void Open(CapturePace withPace);
    void Drop();
    void SetPace(CapturePace wanted);
    void FollowDevices();
    QString Target() const;
    QString NameOf(const QString& id) const;

    Listening& owner;
    const std::string sourceText;
    const std::shared_ptr<Mailbox> mailbox = std::make_shared<Mailbox>();

    std::mutex mutex; // the two below, for the thread that draws
    std::shared_ptr<CapturePipeline> heard; // the same as `current`
    int64_t delay = 0; // ns

    std::shared_ptr<CapturePipeline> current; // null: off, or waits for a device
    EndingPipelines<CapturePipeline> ending;
    std::atomic<CapturePace> pace = CapturePace::Quick; // of the current one
    std::atomic<bool> wasTaken = false; // since the last look
    std::unique_ptr<SoundDevices> devices; // null: off
    bool isOn = false;
    bool hasFailed = false; // and it was told
    bool isHearing = false;
    bool isTold = false; // what is heard
    QString device;
    QString target; // what is heard
    QTimer retry;
    QTimer rest;
};

Listening::Pipeline::Pipeline(Listening& owner, const QString& source)
    : owner(owner)
    , sourceText(source.toStdString())
{
    retry.setSingleShot(true);
    retry.setInterval(RetryInterval);
    QObject::connect(&retry, &QTimer::timeout, [this] { Start(); });
    rest.setInterval(RestInterval);
    QObject::connect(&rest, &QTimer::timeout, [this] {
        if (!wasTaken.exchange(false))
            SetPace(CapturePace::Resting);
    });
}

Listening::Pipeline::~Pipeline()
{
    mailbox->Close();
    Stop();
}

bool Listening::Pipeline::Take(host::AudioRecord& record)
{
    record = {};
    std::shared_ptr<CapturePipeline> pipeline;
    int64_t late = 0;
    {
        const std::lock_guard lock(mutex);
        pipeline = heard;
        late = delay;
    }
    const std::optional<int64_t> now = pipeline ? pipeline->Now() : std::nullopt;
    if (!now || !pipeline->Analysis().Take(*now - late, record))
        return false;
    wasTaken = true;
    if (pace == CapturePace::Resting)
        mailbox->Post([this] { SetPace(CapturePace::Quick); });
    return true;
}

void Listening::Pipeline::Drop()
{
    isHearing = false;
    ending.Take(std::exchange(current, nullptr));
    const std::lock_guard lock(mutex);
    heard = nullptr;
}

QString Listening::Pipeline::Target() const
{
    if (!device.isEmpty())
        return device;
    const QString output = devices ? devices->DefaultOutput() : QString();
    return output.isEmpty() ? QString(AnyMonitor) : output + QStringLiteral(".monitor");
}

QString Listening::Pipeline::NameOf(const QString& id) const
{
    for (const SoundDevice& input : devices ? devices->Inputs() : QList<SoundDevice>()) {
        if (input.id == id)
            return input.name;
    }
    return device.isEmpty() ? tr("What the computer plays") : id;
}

void Listening::Pipeline::Start()
{
    isOn = true;
    if (!devices && sourceText.empty()) {
        devices = std::make_unique<SoundDevices>();
        QObject::connect(devices.get(), &SoundDevices::Changed, [this] { FollowDevices(); });
    }
    target = Target();
    isTold = false;
    Open(CapturePace::Quick);
    rest.start();
}

void Listening::Pipeline::Open(CapturePace withPace)
{
    Drop();
    pace = withPace;
    current = std::make_shared<CapturePipeline>(
        target.toStdString(), sourceText, withPace, mailbox, *this);
    current->Open();
    const std::lock_guard lock(mutex);
    heard = current;
}

// The server can't be asked for another length of blocks while a stream runs.
void Listening::Pipeline::SetPace(CapturePace wanted)
{
    if (isHearing && pace != wanted)
        Open(wanted);
}

void Listening::Pipeline::Stop()
{
    retry.stop();
    rest.stop();
    devices = nullptr;
    isOn = false;
    hasFailed = false;
    Drop();
}

// The server moves a stream whose device goes away to another one, such as a microphone.
void Listening::Pipeline::FollowDevices()
{
    const QList<SoundDevice> inputs = devices->Inputs();
    const bool isThere = std::any_of(inputs.begin(), inputs.end(),
        [this](const SoundDevice& input) { return input.id == device; });
    if (!device.isEmpty() && !isThere && current) {
        OnCaptureFault(*current, !inputs.isEmpty());
        return;
    }
    const QString wanted = Target();
    if (wanted == target && current)
        return;
    if (target == AnyMonitor && current) { // that is it
        target = wanted;
        if (isHearing)
            emit owner.Started(NameOf(target));
        return;
    }
    retry.stop();
    Start();
}

void Listening::Pipeline::OnCapture(CapturePipeline&)
{
    hasFailed = false;
    isHearing = true;
    if (!std::exchange(isTold, true))
        emit owner.Started(NameOf(target));
}

void Listening::Pipeline::OnCaptureFault(CapturePipeline&, bool hasServer)
{
    Drop();
    retry.start();
    if (!std::exchange(hasFailed, true))
        emit owner.Failed(hasServer ? tr("The device to listen to is gone: waiting for it.")
                                    : tr("There is no sound server to listen to: waiting for it."));
}

Listening::Listening(const QString& source)
    : m_pipeline(std::make_unique<Pipeline>(*this, source))
{
}

Listening::~Listening() = default;

void Listening::Start(const QString& device)
{
    m_pipeline->Stop();
    m_pipeline->device = device;
    m_pipeline->Start();
}

void Listening::Stop()
{
    m_pipeline->Stop();
}

bool Listening::IsOn() const
{
    return m_pipeline->isOn;
}

void Listening::SetDelay(int delay)
{
    constexpr int64_t millisecond = 1'000'000;
    const std::lock_guard lock(m_pipeline->mutex);
    m_pipeline->delay = std::max(delay, 0) * millisecond;
}

HeardSound& Listening::Heard()
{
    return *m_pipeline;
}

}
