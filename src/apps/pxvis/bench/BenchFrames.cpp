#include "apps/pxvis/RenderCommand.h"
#include "apps/pxvis/ScriptSet.h"
#include "apps/pxvis/VisualSession.h"
#include "apps/pxvis/bench/BenchAreas.h"
#include "foundation/OQDataRoots.h"
#include "foundation/OQThreadParallelizer.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <random>
#include <sstream>
#include <vector>

namespace pxvis::bench {

namespace {

constexpr int32_t framesOfRun = 10;
constexpr double renderedSeconds = 4; // from the demo song's eighth second on, where all plays

struct FrameSize
{
    const char* name;
    int32_t width;
    int32_t height;
};

// "Calm/Tide" of a script's path.
std::string ScriptName(const std::string& path)
{
    const std::filesystem::path file(path);
    return (file.parent_path().filename() / file.stem()).string();
}

// Two seconds of something like music: bands that rise and fall, and a beat every half second.
std::vector<host::AudioRecord> Music()
{
    std::vector<host::AudioRecord> records(120);
    std::mt19937 random(1);
    for (size_t step = 0; step < records.size(); ++step) {
        host::AudioRecord& record = records[step];
        record.beat = step % 30 == 0;
        record.level = step % 30 == 0 ? 200 : 60 - static_cast<int32_t>(step % 30);
        for (int channel = 0; channel < 2; ++channel) {
            for (int i = 0; i < 512; ++i)
                record.block.spectrum[channel][i] = static_cast<uint8_t>(
                    (random() % 64 + 128u) * static_cast<uint32_t>(512 - i) / 512);
            for (int i = 0; i < 1024; ++i)
                record.block.waveform[channel][i]
                    = static_cast<int8_t>((i * static_cast<int>(step + 3) / 8) % 200 - 100);
        }
    }
    return records;
}

// A script on its own session, past the frame that builds its maps.
class RunningScript
{
public:
    RunningScript(const std::string& path, const FrameSize& size, int32_t threads)
    {
        std::string error;
        m_session = VisualSession::Create(
            { .width = size.width, .height = size.height, .stepRate = {}, .threads = threads },
            error);
        if (m_session && !m_session->LoadScript(path, error))
            m_session.reset();
        Run();
    }

    bool IsRunning() const { return m_session != nullptr; }

    void Run()
    {
        for (int32_t frame = 0; frame < framesOfRun && m_session; ++frame)
            m_session->Step(m_records[m_next++ % m_records.size()]);
    }

private:
    std::unique_ptr<VisualSession> m_session;
    std::vector<host::AudioRecord> m_records = Music();
    size_t m_next = 0;
};

void BenchFrame(
    BenchTable& table, const std::string& name, const std::string& path, const FrameSize& size)
{
    RunningScript single(path, size, 1);
    RunningScript pair(path, size, 2);
    RunningScript plain(path, size, 1);
    if (!single.IsRunning() || !pair.IsRunning() || !plain.IsRunning())
        return;
    const size_t pixels = static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
    std::vector<uint32_t> source(pixels);
    std::vector<uint32_t> target(pixels);
    Timed one { [&] { single.Run(); }, framesOfRun };
    Timed two { [&] { pair.Run(); }, framesOfRun };
    Timed scalar { [&] { WithScalarKernels([&] { plain.Run(); }); }, framesOfRun };
    Timed copy { [&] { std::copy(source.begin(), source.end(), target.begin()); } };
    TimeTogether({ &one, &two, &scalar, &copy }, 1.0);
    table.Add({ name, "frame", 1, one.ns, scalar.ns, copy.ns });
    table.Add({ name, "frame", 2, two.ns, scalar.ns, copy.ns });
}

// All of it: decoding, analysis, drawing and encoding.
void BenchRender(BenchTable& table, const std::string& name, const std::string& path)
{
    std::string folder = std::filesystem::temp_directory_path() / "pxvis-bench-XXXXXX";
    if (!mkdtemp(folder.data()))
        return;
    RenderOptions options;
    options.song = OQDataRoots::Get().FindFile(u"demo/pxvis-demo.opus").ToUtf8();
    options.script = path;
    options.output = folder + "/render.mp4";
    options.level = host::EncodeLevel::Draft;
    options.from = 8;
    options.to = options.from + renderedSeconds;
    options.replace = true;
    std::ostringstream messages;
    int status = 0;
    Timed render { [&] { status = RunRender(options, messages); },
        renderedSeconds * options.frameRate.PerSecond() };
    TimeTogether({ &render }, 0, 1);
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    if (status != 0)
        table.Fail(name + ": " + messages.str());
    else
        table.Add({ name, "frame", OQMostThreads(), render.ns, {}, {} });
}

}

void BenchFrames(BenchTable& table)
{
    const FrameSize sizes[] = { { "1280x720", 1280, 720 }, { "1920x1080", 1920, 1080 } };
    std::string error;
    const std::vector<std::string> scripts = FindScripts("", error);
    for (const FrameSize& size : sizes) {
        for (const std::string& script : scripts) {
            const std::string name = "frame/" + ScriptName(script) + "/" + size.name;
            if (table.Wants(name))
                BenchFrame(table, name, script, size);
        }
    }
    for (const std::string& script : scripts) {
        const std::string name = "render/" + ScriptName(script) + "/1920x1080-draft";
        if (table.Wants(name))
            BenchRender(table, name, script);
    }
}

}
