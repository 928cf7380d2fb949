#pragma once

#include "apps/player/sound/CommandThread.h"
#include "apps/player/sound/Mailbox.h"
#include "host/GStreamer.h"
#include "host/analysis/LiveAnalysis.h"

#include <QString>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace pxvis::player {

class SongPipeline;

// What a pipeline is to do.
struct SongOrder
{
    std::string path;
    int64_t position = 0; // ns
    bool plays = true; // else it waits there
    std::string device; // "": what the system chooses
    std::string sink; // in tests, instead of a device
    bool isSilent = false; // no device is tried
    double amplitude = 1;
    bool isMuted = false;
};

// What is known of the stream that is heard.
struct SongFormat
{
    int64_t duration = -1; // ns; -1: not known
    bool isSeekable = false;
    int channels = 0;
    int sampleRate = 0;
};

// Is told by a pipeline, on the thread of the mailbox.
class SongEvents
{
public:
    // `follows`: without a gap after another one; else it is the one that was opened.
    virtual void OnSongStart(SongPipeline& pipeline, const std::string& path, bool follows) = 0;
    virtual void OnFormat(SongPipeline& pipeline, const SongFormat& format) = 0;
    virtual void OnTags(SongPipeline& pipeline, const GstTagList* tags) = 0;
    virtual void OnPlaced(SongPipeline& pipeline) = 0; // a seek is over
    virtual void OnEnd(SongPipeline& pipeline) = 0;
    virtual void OnFault(SongPipeline& pipeline, const QString& reason) = 0;
    // What was to follow without a gap can't be decoded, which is the end of this pipeline.
    virtual void OnNextFault(SongPipeline& pipeline) = 0;
    // There is no output, which the pipeline does without, or it is gone, which is its end.
    virtual void OnOutputFault(SongPipeline& pipeline, bool goesOn) = 0;
    virtual void OnVolume(SongPipeline& pipeline, double amplitude, bool isMuted) = 0;

protected:
    ~SongEvents() = default;
};

// One playbin from its first song to the end of the last one that follows without a gap, or until a
// device goes away, which takes another. Everything that could wait is done on its own thread;
// calls are for the user-interface thread.
class SongPipeline : public std::enable_shared_from_this<SongPipeline>
{
public:
    // `events` must live until the mailbox is closed.
    SongPipeline(SongOrder order, std::shared_ptr<Mailbox> mailbox, SongEvents& events);
    ~SongPipeline();
    SongPipeline(const SongPipeline&) = delete;
    SongPipeline& operator=(const SongPipeline&) = delete;

    void Open();
    void Close(); // tells nothing any more

    bool WaitForEnd(int milliseconds) { return m_thread.WaitForEnd(milliseconds); }

    void SetPlaying(bool plays);
    void Seek(int64_t position); // ns; only the last of several that wait is done
    void SetVolume(double amplitude, bool isMuted);
    void SetNext(const std::string& path);

    // Empty until the song that follows is being decoded.
    std::string TakenNext();

    bool IsPlaced() const { return m_isPlaced; } // no seek, nor the opening, is under way

    bool HasDevice() const { return m_hasDevice; }

    bool WaitsForOutput() const { return m_waitsForOutput; } // for a server's answer

    int64_t Position(); // ns; -1: not known at the moment

    // Of what is heard now, in ns of the running time; none as long as nothing plays. Any thread.
    std::optional<int64_t> HeardTime();

    host::LiveAnalysis& Analysis() { return *m_analysis; }

private:
    void OpenOnThread();
    bool Build();
    host::GstHolder<GstElement> MakeSinkBin();
    void CloseOnThread();
    void SeekOnThread();
    void ApplyState();
    void ApplyVolume();
    void OnPrerolled();
    void TellFormat();
    void TellVolume();
    void Fail(const QString& reason);
    template <typename Letter>
    void Tell(Letter letter);

    static GstBusSyncReply TakeMessage(GstBus* bus, GstMessage* message, void* self);
    void TakeMessage(GstMessage* message);
    void TakeError(GstMessage* message);
    bool IsOfOutput(GstMessage* message) const;
    static void AboutToFinish(GstElement* playbin, void* self);
    void PrepareNext();
    void WatchStart();
    static void SetUpElement(GstElement* playbin, GstElement* element, void* self);

    const SongOrder m_order;
    const std::shared_ptr<Mailbox> m_mailbox;
    SongEvents& m_events;
    const std::shared_ptr<host::LiveAnalysis> m_analysis;

    std::atomic<bool> m_isClosed = false;
    std::atomic<bool> m_plays;
    std::atomic<bool> m_hasDevice = false;
    std::atomic<bool> m_waitsForOutput = false;
    std::atomic<bool> m_hasStreams = false; // a file of known form
    std::atomic<bool> m_isPlaced = false;
    std::atomic<bool> m_isAtStart = false;

    std::mutex m_mutex; // what follows, up to the thread's own
    host::GstHolder<GstElement> m_playbin; // set by the thread
    host::GstHolder<GstElement> m_sink;
    std::string m_next;
    std::string m_taken; // of m_next, being decoded
    std::string m_missingPlugin;
    int64_t m_target = -1; // of the next seek
    double m_amplitude;
    bool m_isMuted;

    // Of its thread.
    host::GstHolder<GstElement> m_volume; // what has the two properties
    bool m_isPrerolled = false;
    bool m_isOpening = true; // it waits until it is at the first position
    int64_t m_lastTarget = -1;

    CommandThread m_thread;
};

}
