#include "TestFolder.h"
#include "apps/player/sound/HeardSound.h"
#include "apps/player/sound/Listening.h"
#include "apps/player/sound/SoundDevices.h"
#include "apps/player/sound/SoundServer.h"
#include "apps/player/sound/SoundTap.h"
#include "apps/player/sound/SoundTesting.h"
#include "host/analysis/Synthesizer.h"
#include "os/Clock.h"

#include <algorithm>

using namespace pxvis;
using namespace pxvis::player;

namespace {

bool Holds(const std::string& text, const char* part)
{
    return text.find(part) != std::string::npos;
}

int Loudest(HeardSound& sound)
{
    host::AudioRecord record;
    if (!sound.Take(record))
        return 0;
    return *std::max_element(record.block.waveform[0], record.block.waveform[0] + 1024);
}

// When hits come out of a device's monitor, by the system's clock in ns.
class Monitor
{
public:
    explicit Monitor(const char* device)
        : m_pipeline(gst_parse_launch(
            (std::string("pulsesrc provide-clock=false latency-time=5000 device=") + device
                + " ! audio/x-raw,format=F32LE,rate=44100,channels=1 ! fakesink name=sink "
                  "sync=false")
                .c_str(),
            nullptr))
    {
        const host::GstHolder<GstElement> sink(
            gst_bin_get_by_name(GST_BIN(m_pipeline.get()), "sink"));
        const host::GstHolder<GstPad> pad(gst_element_get_static_pad(sink.get(), "sink"));
        gst_pad_add_probe(pad.get(), GST_PAD_PROBE_TYPE_BUFFER, Take, this, nullptr);
        gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING);
    }

    ~Monitor() { gst_element_set_state(m_pipeline.get(), GST_STATE_NULL); }

    std::vector<int64_t> Hits()
    {
        const std::lock_guard lock(m_mutex);
        return m_hits;
    }

private:
    static GstPadProbeReturn Take(GstPad*, GstPadProbeInfo* info, void* context)
    {
        auto& self = *static_cast<Monitor*>(context);
        GstMapInfo map;
        gst_buffer_map(GST_PAD_PROBE_INFO_BUFFER(info), &map, GST_MAP_READ);
        const auto* samples = reinterpret_cast<const float*>(map.data);
        const size_t count = map.size / sizeof(float);
        const auto length = static_cast<int64_t>(count) * 1'000'000'000 / 44100;
        const int64_t begin = os::MonotonicNanoseconds() - length;
        for (size_t i = 0; i < count; ++i, ++self.m_quiet) {
            if (std::abs(samples[i]) < 0.05f)
                continue;
            const std::lock_guard lock(self.m_mutex);
            if (self.m_quiet > 4410)
                self.m_hits.push_back(begin + static_cast<int64_t>(i) * 1'000'000'000 / 44100);
            self.m_quiet = 0;
        }
        gst_buffer_unmap(GST_PAD_PROBE_INFO_BUFFER(info), &map);
        return GST_PAD_PROBE_OK;
    }

    host::GstHolder<GstElement> m_pipeline;
    std::mutex m_mutex;
    std::vector<int64_t> m_hits;
    int m_quiet = 0;
};

}

TEST_CASE(
    "A song goes on when its device or the server goes away, and is heard again when there is one")
{
    SoundServer server;
    Application();
    if (!server.Start())
        return;
    const TestFolder folder;
    Listened listened("");
    Playback& playback = listened.playback;
    playback.SetVolume(0.5);
    playback.Open(WriteSong(folder.Path("a.wav"), Tone(100)));
    CHECK(listened.WaitForPosition(500));
    std::string inputs = server.Ask("list sink-inputs");
    CHECK(Holds(inputs, "application.name = \"pxvis\""));
    CHECK(Holds(inputs, "50%"));
    RunFor(1200);
    server.Ask("set-sink-input-volume " + inputs.substr(inputs.find('#') + 1, 1) + " 25%");
    CHECK(WaitFor([&] { return std::abs(playback.Volume() - 0.25) < 0.01; }));
    playback.Pause();
    CHECK(WaitFor([&] { return Holds(server.Ask("list sink-inputs"), "Corked: yes"); }));
    playback.Play();

    const auto survives
        = [&](const std::function<void()>& harm, const std::function<void()>& cure) {
              listened.lost.clear();
              const qint64 before = playback.Position();
              harm();
              CHECK(WaitFor([&] { return listened.lost.size() == 1; }));
              CHECK(listened.WaitForPosition(before + 1000));
              CHECK(Loudest(playback.Heard()) > 60);
              cure();
              CHECK(WaitFor([&] { return listened.lost.size() == 2; }, 20000));
              CHECK(listened.lost.last().isEmpty());
              CHECK(playback.Position() < before + 20000);
              CHECK(WaitFor([&] { return Holds(server.Ask("list sink-inputs"), "\"pxvis\""); }));
          };
    survives([&] { server.Ask("unload-module module-null-sink"); },
        [&] { server.Ask("load-module module-null-sink sink_name=null1"); });
    survives([&] { server.Kill(); }, [&] { server.Start(); });
    CHECK(playback.State() == PlayState::Playing);
    CHECK(listened.events == QStringList("song a.wav"));
}

TEST_CASE("Devices are told as they come and go, and listening follows the default output")
{
    SoundServer server;
    Application();
    if (!server.Start())
        return;
    const TestFolder folder;
    Listened listened("");
    SoundDevices devices;
    CHECK(WaitFor([&] { return devices.DefaultOutput() == "null1"; }));
    const std::string second = server.Ask("load-module module-null-sink sink_name=null2");
    CHECK(WaitFor([&] { return devices.Outputs().size() == 2; }));
    CHECK(devices.Inputs().size() == 2);
    CHECK(devices.Inputs()[0].isMonitor);

    listened.playback.SetOutput("null2");
    listened.playback.Open(WriteSong(folder.Path("a.wav"), Tone(100)));
    CHECK(listened.WaitForPosition(300));
    Listening listening;
    QStringList told;
    QObject::connect(&listening, &Listening::Started, [&](const QString& name) { told << name; });
    QObject::connect(&listening, &Listening::Failed, [&](const QString&) { told << "failed"; });
    listening.Start();
    CHECK(WaitFor([&] { return !told.isEmpty(); }));
    RunFor(500);
    CHECK(Loudest(listening.Heard()) == 0);
    CHECK(Holds(server.Ask("list source-outputs"), "application.name = \"pxvis\""));
    server.Ask("set-default-sink null2");
    CHECK(WaitFor([&] { return Loudest(listening.Heard()) > 60; }));
    CHECK(WaitFor([&] { return devices.DefaultOutput() == "null2"; }));

    listening.Start("null2.monitor");
    CHECK(WaitFor([&] { return Loudest(listening.Heard()) > 60; }));
    server.Ask("unload-module " + second); // and the stream would go to another device
    CHECK(WaitFor([&] { return told.last() == "failed"; }));
    listening.Start();
    CHECK(WaitFor([&] { return told.last() != "failed"; }));

    server.Kill();
    CHECK(WaitFor([&] { return told.last() == "failed"; }));
    CHECK(WaitFor([&] { return devices.Outputs().isEmpty(); }));
    CHECK(listening.IsOn());
    CHECK(server.Start());
    CHECK(WaitFor([&] { return told.last() != "failed"; }));
    listening.Stop();
    CHECK_FALSE(Loudest(listening.Heard()));
    CHECK(WaitFor([&] { return server.Ask("list source-outputs").empty(); }));
}

TEST_CASE("A hit is shown when it is heard, with the delay that is set")
{
    SoundServer server;
    Application();
    if (!server.Start())
        return;
    const TestFolder folder;
    Synthesizer song(12);
    for (int i = 1; i < 24; ++i)
        song.Kick(i * 0.5);
    Listened listened("");
    Playback& playback = listened.playback;
    Monitor monitor("null1.monitor");
    playback.Open(WriteSong(folder.Path("a.wav"), song.Samples()));
    for (const int delay : { 0, 100 }) {
        playback.SetDelay(delay);
        RunFor(600);
        std::vector<int64_t> shown;
        WaitFor(
            [&] {
                host::AudioRecord record;
                if (playback.Heard().Take(record) && record.level > 100)
                    shown.push_back(os::MonotonicNanoseconds());
                return shown.size() >= 7;
            },
            5000);
        RunFor(300);
        std::vector<int64_t> late; // ms
        for (const int64_t time : shown) {
            for (const int64_t hit : monitor.Hits()) {
                if (std::abs(time - hit) < 240'000'000)
                    late.push_back((time - hit) / 1'000'000);
            }
        }
        REQUIRE(late.size() >= 4);
        std::sort(late.begin(), late.end());
        CAPTURE(delay);
        CAPTURE(late.back());
        CHECK(std::abs(late[late.size() / 2] - delay) <= 20);
    }
}
