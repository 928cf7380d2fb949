// How often the library paints a window, and what it takes of memory and time:
//
//     measure_window LIBPXVIS RECORDS [SECONDS [MODE]]
//
// plays what "pxvis analyze" wrote in a window of 1280x720 on the display that DISPLAY names. With
// a mode, or "Cycle All" without one, it prints a line a minute; SECONDS of 0 instead gives each
// script three seconds and prints a line for each, without the second in which it starts. With
// "rest" for SECONDS it pauses the song instead, with "hidden" it takes the window away. The
// settings and scripts are the user's: set XDG_CONFIG_HOME and XDG_DATA_HOME for others.

#include <pxvis/IOQVisualization.h>
#include <pxvis/IOQVisualizationHost.h>
#include <pxvis/IVisAudioData.h>
#include <pxvis/SysString.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>
#include <vector>
#include <xcb/xcb.h>

namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

struct Record
{
    int32_t level, beat, change;
    VisAudioBlock block;
};

struct Song
{
    std::vector<Record> records;
    Clock::time_point start = Clock::now();
    bool isPaused = false;
    int64_t frames = 0; // asked for
    double slowest = 0; // seconds between two
    Clock::time_point last = start;
};

struct AudioData final : IVisAudioData
{
    explicit AudioData(Song& song)
        : song(song)
    {
    }

    int32_t Refresh() override
    {
        const auto step = static_cast<size_t>(SecondsSince(song.start) * 60);
        record = song.records[step % song.records.size()];
        ++song.frames;
        song.slowest = std::max(song.slowest, SecondsSince(song.last));
        song.last = Clock::now();
        return song.isPaused ? 1 : 0;
    }

    void Reserved() override { }

    const VisAudioBlock* GetData() override { return &record.block; }

    int32_t GetValue(int32_t which) override
    {
        const int32_t values[] = { record.level, record.beat, 60000, record.change };
        return which >= 0 && which < 4 ? values[which] : 0;
    }

    const void* GetPlayInfo() override { return nullptr; }

    char16_t* GetTrackField(int32_t) override { return nullptr; }

    char16_t* ExpandText(const char16_t* text) override { return SysAllocString(text); }

    Song& song;
    Record record {};
};

struct Connection final : IOQHostConnection
{
    explicit Connection(Song& song)
        : song(song)
    {
    }

    void Refresh() override { }

    const int8_t* GetWaveform() override { return nullptr; }

    const uint8_t* GetSpectrum() override { return nullptr; }

    char16_t* GetProperty(const char16_t* name) override
    {
        if (std::u16string_view(name) != u"Legacy Data Object")
            return nullptr;
        IVisAudioData* data = new AudioData(song);
        char digits[32];
        const int length = std::snprintf(
            digits, sizeof digits, "%llx", reinterpret_cast<unsigned long long>(data));
        return SysAllocString(std::u16string(digits, digits + length).c_str());
    }

    const void* GetCoverImage() override { return nullptr; }

    Song& song;
};

struct Host final : IOQVisualizationHost
{
    IOQHostConnection* Connect(OQVisualizationBase*) override { return new Connection(song); }

    Song song;
};

double ResidentMegabytes()
{
    std::ifstream file("/proc/self/statm");
    int64_t pages = 0;
    file >> pages >> pages;
    return static_cast<double>(pages) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1048576.0;
}

double ProcessorSeconds()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// `pause`: milliseconds between two turns for the library.
void Play(IOQVisualization& visualization, double seconds, int pause)
{
    const auto start = Clock::now();
    while (SecondsSince(start) < seconds) {
        visualization.SetProperty(u"Process Events", u"10");
        std::this_thread::sleep_for(std::chrono::milliseconds(pause));
    }
}

// Plays for so long and prints what it took.
void Measure(IOQVisualization& visualization, Song& song, double seconds, const std::string& name,
    int pause = 1)
{
    const auto start = Clock::now();
    const int64_t frames = song.frames;
    const double cpu = ProcessorSeconds();
    song.slowest = 0;
    song.last = start;
    Play(visualization, seconds, pause);
    const double time = SecondsSince(start);
    std::printf("%-28s %5.1f paints/s, slowest %5.1f ms, %5.2f %% of a processor, %.1f MiB\n",
        name.c_str(), static_cast<double>(song.frames - frames) / time, song.slowest * 1000,
        (ProcessorSeconds() - cpu) / time * 100, ResidentMegabytes());
    std::fflush(stdout);
}

std::vector<std::u16string> Modes(IOQVisualization& visualization)
{
    const std::unique_ptr<char16_t, decltype(&SysFreeString)> text(
        visualization.GetProperty(u"Modes"), SysFreeString);
    std::vector<std::u16string> modes(1);
    for (const char16_t character : std::u16string_view(text ? text.get() : u"")) {
        if (character == u'|')
            modes.emplace_back();
        else
            modes.back() += character;
    }
    return modes;
}

uint32_t MakeWindow(xcb_connection_t* connection)
{
    if (xcb_connection_has_error(connection))
        return 0;
    const uint32_t window = xcb_generate_id(connection);
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 1280, 720, 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(connection, window);
    free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    return window;
}

}

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fputs("usage: measure_window LIBPXVIS RECORDS [SECONDS [MODE]]\n", stderr);
        return 2;
    }
    Host host;
    std::ifstream file(argv[2], std::ios::binary);
    for (Record record; file.read(reinterpret_cast<char*>(&record), sizeof record);)
        host.song.records.push_back(record);
    void* library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    void* entry = library ? dlsym(library, "CreateVisualization") : nullptr;
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const uint32_t window = MakeWindow(connection);
    if (host.song.records.empty() || !entry || !window) {
        std::fputs("measure_window: no records, no library or no display\n", stderr);
        return 1;
    }
    std::unique_ptr<IOQVisualization> visualization(
        reinterpret_cast<decltype(&CreateVisualization)>(entry)(2, &host));
    if (!visualization || !visualization->CreateWnd(window, 0))
        return 1;
    Measure(*visualization, host.song, 2, "(start)");

    const std::string rest = argc > 3 ? argv[3] : "";
    if (rest == "rest" || rest == "hidden") {
        host.song.isPaused = rest == "rest";
        if (rest == "hidden")
            xcb_unmap_window(connection, window);
        xcb_flush(connection);
        Measure(*visualization, host.song, 2, "(" + rest + ")", 16);
        Measure(*visualization, host.song, 20, rest, 16);
        return 0;
    }
    const double seconds = argc > 3 ? std::atof(argv[3]) : 0;
    const std::string mode = argc > 4 ? argv[4] : "Cycle All";
    const auto choose = [&](const std::u16string& name) {
        visualization->SetProperty(u"Current Mode", name.c_str());
    };
    if (seconds > 0) {
        choose(std::u16string(mode.begin(), mode.end()));
        for (int minute = 1; minute <= seconds / 60 + 0.999; ++minute)
            Measure(*visualization, host.song, std::min(seconds, 60.0),
                "minute " + std::to_string(minute));
        return 0;
    }
    for (const std::u16string& name : Modes(*visualization)) {
        if (name.ends_with(u"Cycle All"))
            continue;
        choose(name);
        Play(*visualization, 1, 1);
        Measure(*visualization, host.song, 3, std::string(name.begin(), name.end()));
    }
    return 0;
}
