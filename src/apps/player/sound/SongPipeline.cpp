#include "apps/player/sound/SongPipeline.h"

#include "apps/player/sound/Playback.h"
#include "apps/player/sound/SoundOutput.h"
#include "apps/player/sound/SoundTap.h"
#include "host/SongDecoder.h"

#include <gst/audio/audio.h>
#include <gst/audio/streamvolume.h>
#include <gst/pbutils/missing-plugins.h>

#include <atomic>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace pxvis::player {

using namespace host;

namespace {

constexpr size_t LookAhead = 6615; // 150 ms, as for a song that is rendered

// Decoded sound waits here for its time, so that the pictures can be told of it before it is heard.
constexpr const char* FrontText
    = "queue max-size-time=1000000000 max-size-bytes=16777216 max-size-buffers=0"
      " ! audioconvert ! audioresample ! volume name=volume";

QString FileFault(const std::string& path)
{
    if (path.empty())
        return Playback::tr("Only files of this computer can be played.");
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0)
        return errno == ENOENT ? Playback::tr("There is no such file.")
                               : Playback::tr("The file can't be opened.");
    if (!S_ISREG(status.st_mode))
        return Playback::tr("This is not a music file.");
    if (access(path.c_str(), R_OK) != 0)
        return Playback::tr("You may not read this file.");
    return status.st_size > 0 ? QString() : Playback::tr("The file is empty.");
}

template <typename T>
GstHolder<T> Share(const GstHolder<T>& holder)
{
    return GstHolder<T>(holder ? static_cast<T*>(gst_object_ref(holder.get())) : nullptr);
}

}

SongPipeline::SongPipeline(SongOrder order, std::shared_ptr<Mailbox> mailbox, SongEvents& events)
    : m_order(std::move(order))
    , m_mailbox(std::move(mailbox))
    , m_events(events)
    , m_analysis(std::make_shared<LiveAnalysis>(LookAhead))
    , m_plays(m_order.plays)
    , m_target(m_order.position > 0 ? m_order.position : -1)
    , m_amplitude(m_order.amplitude)
    , m_isMuted(m_order.isMuted)
{
}

SongPipeline::~SongPipeline() = default;

template <typename Letter>
void SongPipeline::Tell(Letter letter)
{
    m_mailbox->Post([self = shared_from_this(), letter = std::move(letter)] {
        if (!self->m_isClosed)
            letter(*self);
    });
}

void SongPipeline::Fail(const QString& reason)
{
    Tell([reason](SongPipeline& self) { self.m_events.OnFault(self, reason); });
}

void SongPipeline::Open()
{
    m_thread.Post([self = shared_from_this()] { self->OpenOnThread(); });
}

void SongPipeline::Close()
{
    m_isClosed = true;
    m_thread.Post([self = shared_from_this()] { self->CloseOnThread(); });
    m_thread.Finish();
}

void SongPipeline::OpenOnThread()
{
    if (m_isClosed)
        return;
    std::string error;
    const QString fault = FileFault(m_order.path);
    if (!InitializeGStreamer(error))
        Fail(QString::fromStdString(error));
    else if (!fault.isEmpty())
        Fail(fault);
    else if (!Build())
        Fail(Playback::tr("GStreamer's base plug-ins are not installed."));
    else
        gst_element_set_state(m_playbin.get(), GST_STATE_PAUSED);
}

GstHolder<GstElement> SongPipeline::MakeSinkBin()
{
    GstHolder<GstElement> sink;
    if (!m_order.sink.empty()) {
        GstElement* made = gst_parse_bin_from_description(m_order.sink.c_str(), TRUE, nullptr);
        sink.reset(made ? GST_ELEMENT(gst_object_ref_sink(made)) : nullptr);
    } else if (!m_order.isSilent) {
        m_waitsForOutput = true;
        sink = MakeOutput(m_order.device);
        m_waitsForOutput = false;
    }
    m_hasDevice = sink != nullptr;
    if (!sink)
        sink = MakeSilentOutput();
    GstElement* front = gst_parse_bin_from_description(FrontText, TRUE, nullptr);
    GstHolder<GstElement> bin(GST_ELEMENT(gst_object_ref_sink(gst_bin_new(nullptr))));
    if (!sink || !front)
        return nullptr;
    gst_bin_add_many(GST_BIN(bin.get()), front, sink.get(), nullptr);
    gst_element_link(front, sink.get());
    const GstHolder<GstPad> pad(gst_element_get_static_pad(front, "sink"));
    gst_element_add_pad(bin.get(), gst_ghost_pad_new("sink", pad.get()));
    TapSound(pad.get(), m_analysis);

    if (GST_IS_STREAM_VOLUME(sink.get())) {
        m_volume = Share(sink);
        for (const char* signal : { "notify::volume", "notify::mute" })
            g_signal_connect(sink.get(), signal, G_CALLBACK(+[](GObject*, GParamSpec*, void* self) {
                auto& pipeline = *static_cast<SongPipeline*>(self);
                // Asks the server, which the thread that streams must not wait for.
                pipeline.m_thread.Post([own = pipeline.shared_from_this()] { own->TellVolume(); });
            }),
                this);
    } else {
        m_volume.reset(gst_bin_get_by_name(GST_BIN(front), "volume"));
    }
    const std::lock_guard lock(m_mutex);
    m_sink = std::move(sink);
    return bin;
}

bool SongPipeline::Build()
{
    GstElement* made = gst_element_factory_make("playbin", nullptr);
    if (!made)
        return false;
    GstHolder<GstElement> playbin(GST_ELEMENT(gst_object_ref_sink(made)));
    const GstHolder<GstElement> sink = MakeSinkBin();
    const GstHolder<char> uri(gst_filename_to_uri(m_order.path.c_str(), nullptr));
    if (!sink || !uri)
        return false;
    ApplyVolume();
    if (!m_hasDevice && !m_order.isSilent)
        Tell([](SongPipeline& self) { self.m_events.OnOutputFault(self, true); });

    gst_util_set_object_arg(G_OBJECT(made), "flags", "audio");
    g_object_set(made, "uri", uri.get(), "audio-sink", sink.get(), nullptr);
    g_signal_connect(made, "about-to-finish", G_CALLBACK(AboutToFinish), this);
    g_signal_connect(made, "element-setup", G_CALLBACK(SetUpElement), this);
    const GstHolder<GstBus> bus(gst_element_get_bus(made));
    gst_bus_set_sync_handler(bus.get(), TakeMessage, this, nullptr);
    const std::lock_guard lock(m_mutex);
    m_playbin = std::move(playbin);
    return true;
}

void SongPipeline::CloseOnThread()
{
    // Its threads end with this, and with them all calls that know this object.
    if (m_playbin)
        gst_element_set_state(m_playbin.get(), GST_STATE_NULL);
    else if (m_sink)
        gst_element_set_state(m_sink.get(), GST_STATE_NULL);
    if (m_playbin) {
        const GstHolder<GstBus> bus(gst_element_get_bus(m_playbin.get()));
        gst_bus_set_sync_handler(bus.get(), nullptr, nullptr, nullptr);
    }
    if (m_volume)
        g_signal_handlers_disconnect_by_data(m_volume.get(), this);
    m_volume.reset();
    GstHolder<GstElement> playbin, sink;
    const std::lock_guard lock(m_mutex);
    playbin.swap(m_playbin);
    sink.swap(m_sink);
}

void SongPipeline::SetUpElement(GstElement*, GstElement* element, void* self)
{
    const GstElementFactory* factory = gst_element_get_factory(element);
    if (factory && g_str_equal(GST_OBJECT_NAME(factory), "uridecodebin"))
        g_signal_connect(element, "autoplug-select", G_CALLBACK(SelectForSound),
            &static_cast<SongPipeline*>(self)->m_hasStreams);
}

void SongPipeline::SetPlaying(bool plays)
{
    m_plays = plays;
    m_thread.Post([self = shared_from_this()] { self->ApplyState(); });
}

void SongPipeline::ApplyState()
{
    if (m_playbin && !m_isOpening && !m_isClosed)
        gst_element_set_state(m_playbin.get(), m_plays ? GST_STATE_PLAYING : GST_STATE_PAUSED);
}

void SongPipeline::Seek(int64_t position)
{
    m_isPlaced = false;
    {
        const std::lock_guard lock(m_mutex);
        m_target = position;
    }
    m_thread.Post([self = shared_from_this()] { self->SeekOnThread(); });
}

// While one is under way the next waits for its end.
void SongPipeline::SeekOnThread()
{
    if (!m_isPrerolled || m_isClosed)
        return;
    int64_t target = -1;
    {
        const std::lock_guard lock(m_mutex);
        target = m_target;
    }
    if (target < 0)
        return;
    m_isPrerolled = false;
    m_lastTarget = target;
    if (!gst_element_seek_simple(m_playbin.get(), GST_FORMAT_TIME, GST_SEEK_FLAG_FLUSH, target))
        OnPrerolled();
}

// The song is ready, or is so again after a seek.
void SongPipeline::OnPrerolled()
{
    m_isPrerolled = true;
    {
        const std::lock_guard lock(m_mutex);
        if (m_target >= 0 && m_target == m_lastTarget)
            m_target = -1;
        m_isPlaced = m_target < 0;
    }
    if (!m_isPlaced) {
        SeekOnThread();
        return;
    }
    m_isOpening = false;
    ApplyState();
    TellFormat();
    Tell([](SongPipeline& self) { self.m_events.OnPlaced(self); });
}

int64_t SongPipeline::Position()
{
    GstHolder<GstElement> sink;
    {
        const std::lock_guard lock(m_mutex);
        if (m_target >= 0)
            return m_target;
        if (m_isAtStart)
            return 0;
        sink = Share(m_sink);
    }
    gint64 position = -1;
    if (!sink || !gst_element_query_position(sink.get(), GST_FORMAT_TIME, &position))
        return -1;
    return position;
}

std::optional<int64_t> SongPipeline::HeardTime()
{
    GstHolder<GstElement> playbin;
    {
        const std::lock_guard lock(m_mutex);
        playbin = Share(m_playbin);
    }
    return playbin ? RunningTime(playbin.get()) : std::nullopt;
}

void SongPipeline::TellFormat()
{
    if (!m_playbin || m_isClosed)
        return;
    SongFormat format;
    gint64 duration = 0;
    if (gst_element_query_duration(m_playbin.get(), GST_FORMAT_TIME, &duration) && duration > 0)
        format.duration = duration;
    GstQuery* query = gst_query_new_seeking(GST_FORMAT_TIME);
    gboolean isSeekable = FALSE;
    if (gst_element_query(m_playbin.get(), query))
        gst_query_parse_seeking(query, nullptr, &isSeekable, nullptr, nullptr);
    gst_query_unref(query);
    format.isSeekable = isSeekable;
    GstObject* bin = gst_object_get_parent(GST_OBJECT(m_sink.get()));
    const GstHolder<GstPad> pad(
        bin ? gst_element_get_static_pad(GST_ELEMENT(bin), "sink") : nullptr);
    const GstHolder<GstCaps> caps(pad ? gst_pad_get_current_caps(pad.get()) : nullptr);
    GstAudioInfo info;
    if (caps && gst_audio_info_from_caps(&info, caps.get())) {
        format.channels = GST_AUDIO_INFO_CHANNELS(&info);
        format.sampleRate = GST_AUDIO_INFO_RATE(&info);
    }
    if (bin)
        gst_object_unref(bin);
    Tell([format](SongPipeline& self) { self.m_events.OnFormat(self, format); });
}

void SongPipeline::SetVolume(double amplitude, bool isMuted)
{
    {
        const std::lock_guard lock(m_mutex);
        m_amplitude = amplitude;
        m_isMuted = isMuted;
    }
    m_thread.Post([self = shared_from_this()] { self->ApplyVolume(); });
}

void SongPipeline::ApplyVolume()
{
    if (!m_volume)
        return;
    double amplitude = 0;
    gboolean isMuted = FALSE;
    {
        const std::lock_guard lock(m_mutex);
        amplitude = m_amplitude;
        isMuted = m_isMuted;
    }
    g_object_set(m_volume.get(), "volume", amplitude, "mute", isMuted, nullptr);
}

void SongPipeline::TellVolume()
{
    if (!m_volume || m_isClosed)
        return;
    double amplitude = 0;
    gboolean isMuted = FALSE;
    g_object_get(m_volume.get(), "volume", &amplitude, "mute", &isMuted, nullptr);
    Tell([amplitude, isMuted](
             SongPipeline& self) { self.m_events.OnVolume(self, amplitude, isMuted); });
}

void SongPipeline::SetNext(const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    m_next = path;
}

std::string SongPipeline::TakenNext()
{
    const std::lock_guard lock(m_mutex);
    return m_taken;
}

void SongPipeline::AboutToFinish(GstElement*, void* self)
{
    static_cast<SongPipeline*>(self)->PrepareNext();
}

// On the thread that streams, a second ahead of what is heard. A song that can't be played ends
// this one as if there were none, and is then opened like any other, which tells its fault: in
// playbin it would take the rest of this one along.
void SongPipeline::PrepareNext()
{
    std::string next;
    {
        const std::lock_guard lock(m_mutex);
        next = m_next;
    }
    std::string fault;
    if (next.empty() || !FileFault(next).isEmpty() || !SongDecoder::Open(next, fault))
        return;
    const GstHolder<char> uri(gst_filename_to_uri(next.c_str(), nullptr));
    {
        const std::lock_guard lock(m_mutex);
        m_taken = next;
    }
    g_object_set(m_playbin.get(), "uri", uri.get(), nullptr);
}

GstBusSyncReply SongPipeline::TakeMessage(GstBus*, GstMessage* message, void* self)
{
    static_cast<SongPipeline*>(self)->TakeMessage(message);
    gst_message_unref(message);
    return GST_BUS_DROP;
}

// Until its first sound is there, the output tells the position of the song before.
void SongPipeline::WatchStart()
{
    const GstHolder<GstPad> pad(gst_element_get_static_pad(m_sink.get(), "sink"));
    m_isAtStart = pad != nullptr;
    if (!pad)
        return;
    const auto begin = [](GstPad*, GstPadProbeInfo*, void* self) {
        static_cast<SongPipeline*>(self)->m_isAtStart = false;
        return GST_PAD_PROBE_REMOVE;
    };
    gst_pad_add_probe(pad.get(), GST_PAD_PROBE_TYPE_BUFFER, begin, this, nullptr);
}

bool SongPipeline::IsOfOutput(GstMessage* message) const
{
    return m_sink && GST_MESSAGE_SRC(message)
        && gst_object_has_as_ancestor(GST_MESSAGE_SRC(message), GST_OBJECT(m_sink.get()));
}

// On any thread of GStreamer's.
void SongPipeline::TakeMessage(GstMessage* message)
{
    const auto self = shared_from_this();
    const bool isOwn = GST_MESSAGE_SRC(message) == GST_OBJECT(m_playbin.get());
    switch (GST_MESSAGE_TYPE(message)) {
    case GST_MESSAGE_ASYNC_DONE:
        if (isOwn)
            m_thread.Post([self] { self->OnPrerolled(); });
        break;
    case GST_MESSAGE_STREAM_START: {
        if (!isOwn)
            break;
        WatchStart();
        std::string path;
        bool follows = false;
        {
            const std::lock_guard lock(m_mutex);
            follows = !m_taken.empty();
            path = follows ? std::exchange(m_taken, {}) : m_order.path;
        }
        Tell([path, follows](SongPipeline& own) { own.m_events.OnSongStart(own, path, follows); });
        m_thread.Post([self] { self->TellFormat(); });
        break;
    }
    case GST_MESSAGE_DURATION_CHANGED:
        m_thread.Post([self] { self->TellFormat(); });
        break;
    case GST_MESSAGE_TAG: {
        // Those of the output come when they hold for what is heard.
        if (!IsOfOutput(message))
            break;
        GstTagList* tags = nullptr;
        gst_message_parse_tag(message, &tags);
        const std::shared_ptr<GstTagList> holder(tags, GstRelease {});
        Tell([holder](SongPipeline& own) { own.m_events.OnTags(own, holder.get()); });
        break;
    }
    case GST_MESSAGE_EOS:
        if (isOwn)
            Tell([](SongPipeline& own) { own.m_events.OnEnd(own); });
        break;
    case GST_MESSAGE_CLOCK_LOST:
        m_thread.Post([self] {
            if (self->m_playbin && !self->m_isClosed && self->m_plays) {
                gst_element_set_state(self->m_playbin.get(), GST_STATE_PAUSED);
                self->ApplyState();
            }
        });
        break;
    case GST_MESSAGE_ELEMENT:
        if (gst_is_missing_plugin_message(message)) {
            const std::string plugin = MissingPlugin(message);
            const std::lock_guard lock(m_mutex);
            if (!plugin.empty())
                m_missingPlugin = plugin;
        }
        break;
    case GST_MESSAGE_ERROR:
        TakeError(message);
        break;
    default:
        break;
    }
}

void SongPipeline::TakeError(GstMessage* message)
{
    if (IsOfOutput(message)) {
        Tell([](SongPipeline& own) { own.m_events.OnOutputFault(own, false); });
        return;
    }
    std::string missingPlugin;
    {
        const std::lock_guard lock(m_mutex);
        if (!m_taken.empty()) {
            Tell([](SongPipeline& own) { own.m_events.OnNextFault(own); });
            return;
        }
        missingPlugin = m_missingPlugin;
    }
    GError* error = nullptr;
    gst_message_parse_error(message, &error, nullptr);
    const GstHolder<GError> holder(error);
    if (!missingPlugin.empty())
        Fail(Playback::tr("GStreamer has no plug-in for it: %1")
                 .arg(QString::fromStdString(missingPlugin)));
    else if (g_error_matches(error, GST_STREAM_ERROR, GST_STREAM_ERROR_TYPE_NOT_FOUND)
        || g_error_matches(error, GST_STREAM_ERROR, GST_STREAM_ERROR_WRONG_TYPE)
        || g_error_matches(error, GST_STREAM_ERROR, GST_STREAM_ERROR_CODEC_NOT_FOUND)
        || g_error_matches(error, GST_CORE_ERROR, GST_CORE_ERROR_MISSING_PLUGIN))
        Fail(m_hasStreams ? Playback::tr("It holds no sound.")
                          : Playback::tr("This is not a music file."));
    else
        Fail(Playback::tr("It can't be decoded: %1")
                 .arg(QString::fromStdString(OneLine(error->message))));
}

}
