#pragma once

#include "apps/player/sound/CommandThread.h"
#include "apps/player/sound/Mailbox.h"
#include "host/GStreamer.h"
#include "host/analysis/LiveAnalysis.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace pxvis::player {

class CapturePipeline;

// Is told by a pipeline, on the thread of the mailbox.
class CaptureEvents
{
public:
    virtual void OnCapture(CapturePipeline& pipeline) = 0; // sound comes
    // It is the end of this pipeline.
    virtual void OnCaptureFault(CapturePipeline& pipeline, bool hasServer) = 0;

protected:
    ~CaptureEvents() = default;
};

// How often sound is handed over: each block wakes four threads.
enum class CapturePace
{
    Quick, // a picture has its own sound
    Resting // nobody looks, or there is nothing to hear but the end of silence
};

// Hears one device until that goes away. Everything that could wait is done on its own thread;
// calls are for the user-interface thread.
class CapturePipeline : public std::enable_shared_from_this<CapturePipeline>
{
public:
    // `device`: the sound server's name of it. `source`: in tests, instead of that. `events` must
    // live until the mailbox is closed.
    CapturePipeline(std::string device, std::string source, CapturePace pace,
        std::shared_ptr<Mailbox> mailbox, CaptureEvents& events);

    void Open();
    void Close(); // tells nothing any more

    bool WaitForEnd(int milliseconds) { return m_thread.WaitForEnd(milliseconds); }

    std::optional<int64_t> Now(); // ns of the running time. Any thread.

    host::LiveAnalysis& Analysis() { return *m_analysis; }

private:
    void OpenOnThread();
    void CloseOnThread();
    bool Build(bool& hasServer);
    void Fail(bool hasServer);
    static GstBusSyncReply TakeMessage(GstBus* bus, GstMessage* message, void* self);

    const std::string m_device;
    const std::string m_sourceText;
    const CapturePace m_pace;
    const std::shared_ptr<Mailbox> m_mailbox;
    CaptureEvents& m_events;
    const std::shared_ptr<host::LiveAnalysis> m_analysis;
    std::atomic<bool> m_isClosed = false;

    std::mutex m_mutex; // m_pipeline, which its thread sets
    host::GstHolder<GstElement> m_pipeline;
    CommandThread m_thread;
};

}
