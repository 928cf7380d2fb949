// A display for music in plain Xlib: loads libpxvis.so, gives it a window, feeds it a song and
// lets the keys choose what is shown. Space: next mode, Backspace: the one before, q: quit.
//
//     c++ -std=c++17 $(pkg-config --cflags pxvis) xlib-host.cpp -lX11 -ldl -o xlib-host
//     pxvis analyze song.flac > song.records
//     ./xlib-host $(pkg-config --variable=library pxvis) song.records
//
// SPDX-License-Identifier: 0BSD

#include <pxvis/IOQVisualization.h>
#include <pxvis/IOQVisualizationHost.h>
#include <pxvis/IVisAudioData.h>
#include <pxvis/SysString.h>

#include <X11/Xlib.h>
#include <X11/keysym.h>

#include <chrono>
#include <cstdio>
#include <dlfcn.h>
#include <fstream>
#include <memory>
#include <poll.h>
#include <string>
#include <vector>

namespace {

// What "pxvis analyze" writes 60 times a second of the song.
struct Record
{
    int32_t level, beat, change;
    VisAudioBlock block;
};

std::vector<Record> g_song(1); // a step of silence, or what the file has
const auto g_start = std::chrono::steady_clock::now();

// What is heard now; a player asks its audio clock instead. Starts over at its end.
const Record& Now()
{
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - g_start;
    return g_song[static_cast<size_t>(time.count() * 60) % g_song.size()];
}

// The library owns these, and asks for a new one with each script.
struct AudioData final : IVisAudioData
{
    int32_t Refresh() override
    {
        record = Now();
        return 0;
    }

    void Reserved() override { }

    const VisAudioBlock* GetData() override { return &record.block; }

    int32_t GetValue(int32_t which) override
    {
        const int32_t values[] = { record.level, record.beat, 60000, record.change };
        return which >= 0 && which < 4 ? values[which] : 0;
    }

    const void* GetPlayInfo() override { return nullptr; }

    char16_t* GetTrackField(int32_t which) override
    {
        return which == VisTrackFieldName ? SysAllocString(u"A song") : nullptr;
    }

    char16_t* ExpandText(const char16_t* text) override { return SysAllocString(text); }

    Record record {};
};

struct Connection final : IOQHostConnection
{
    void Refresh() override { }

    const int8_t* GetWaveform() override { return nullptr; } // for 3D scenes, as the next one

    const uint8_t* GetSpectrum() override { return nullptr; }

    char16_t* GetProperty(const char16_t* name) override
    {
        if (std::u16string_view(name) != u"Legacy Data Object")
            return nullptr;
        char digits[32];
        IVisAudioData* data = new AudioData;
        std::snprintf(digits, sizeof digits, "0x%llx", reinterpret_cast<unsigned long long>(data));
        return SysAllocString(std::u16string(digits, digits + std::string(digits).size()).c_str());
    }

    const void* GetCoverImage() override { return nullptr; }
};

struct Host final : IOQVisualizationHost
{
    IOQHostConnection* Connect(OQVisualizationBase*) override { return new Connection; }
};

std::vector<std::u16string> Modes(IOQVisualization& visualization)
{
    char16_t* text = visualization.GetProperty(u"Modes");
    std::u16string_view rest = text ? text : u"";
    std::vector<std::u16string> modes;
    for (size_t end = 0; end != std::u16string_view::npos; rest.remove_prefix(end + 1)) {
        end = rest.find(u'|');
        modes.emplace_back(rest.substr(0, end));
        if (end == std::u16string_view::npos)
            break;
    }
    SysFreeString(text);
    return modes;
}

}

int main(int argc, char** argv)
{
    Display* display = XOpenDisplay(nullptr);
    void* library = argc == 3 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
    void* entry = library ? dlsym(library, "CreateVisualization") : nullptr;
    if (!display || !entry) {
        std::fprintf(stderr, "usage: xlib-host LIBPXVIS RECORDS, with a display: %s\n",
            library || argc != 3 ? "" : dlerror());
        return 1;
    }
    const Window window
        = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 1280, 720, 0, 0, 0);
    Atom closed = XInternAtom(display, "WM_DELETE_WINDOW", False);
    XSetWMProtocols(display, window, &closed, 1);
    XSelectInput(display, window, KeyPressMask);
    XMapWindow(display, window);
    XSync(display, False); // the library has a connection of its own

    std::ifstream file(argv[2], std::ios::binary);
    for (Record record; file.read(reinterpret_cast<char*>(&record), sizeof record);)
        g_song.push_back(record);
    Host host;
    const auto create = reinterpret_cast<decltype(&CreateVisualization)>(entry);
    std::unique_ptr<IOQVisualization> visualization(create(2, &host));
    if (!visualization || !visualization->CreateWnd(window, 0)) {
        std::fprintf(stderr, "xlib-host: no visualization; the library's log tells why\n");
        return 1;
    }
    const std::vector<std::u16string> modes = Modes(*visualization);
    size_t mode = 0;
    for (bool running = true; running;) {
        // The library's windows have their turn here, 60 times a second or more.
        visualization->SetProperty(u"Process Events", u"10");
        pollfd events { ConnectionNumber(display), POLLIN, 0 };
        if (!XPending(display) && poll(&events, 1, 4) <= 0)
            continue;
        while (running && XPending(display)) {
            XEvent event;
            XNextEvent(display, &event);
            const KeySym key = event.type == KeyPress ? XLookupKeysym(&event.xkey, 0) : NoSymbol;
            // Other messages may come, too: toolkits send their own to windows they embed in.
            const bool isClosed = event.type == ClientMessage
                && static_cast<Atom>(event.xclient.data.l[0]) == closed;
            running = !isClosed && key != XK_q;
            if (key == XK_space || key == XK_BackSpace) {
                mode = (mode + (key == XK_space ? 1 : modes.size() - 1)) % modes.size();
                visualization->SetProperty(u"Current Mode", modes[mode].c_str());
                XStoreName(
                    display, window, std::string(modes[mode].begin(), modes[mode].end()).c_str());
            }
        }
    }
    visualization.reset(); // before its parent and its host
    XDestroyWindow(display, window);
    XCloseDisplay(display);
    return 0;
}
