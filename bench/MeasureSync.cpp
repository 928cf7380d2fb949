// How far the player's pictures are from its sound:
//
//     measure_sync kicks FILE.wav          writes 30 s of kicks, one a second
//     measure_sync script FILE.pxv         writes a script that is white at a kick, else black
//     measure_sync watch X Y [SECONDS]     compares what is heard with what is seen
//
// Watching reads the pixel (X, Y) of the display that DISPLAY names as often as it can, and the
// monitor of the sound server's default output through "parec". Have the player play the kicks with
// the script meanwhile; for each kick it prints by how much the flash came later, in ms.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <numbers>
#include <string_view>
#include <thread>
#include <unistd.h>
#include <vector>
#include <xcb/xcb.h>

namespace {

constexpr int sampleRate = 44100;
using Clock = std::chrono::steady_clock;

double Now()
{
    return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}

void WriteKicks(const char* path)
{
    constexpr uint32_t seconds = 30;
    std::vector<int16_t> samples(seconds * sampleRate);
    for (size_t i = sampleRate / 2; i < samples.size(); ++i) {
        const double t = std::fmod(static_cast<double>(i) / sampleRate + 0.5, 1.0);
        const double tone = std::sin(2 * std::numbers::pi * (55 * t + 3 * (1 - std::exp(-t * 40))));
        const double click = std::exp(-t * 400) * std::sin(2 * std::numbers::pi * 3000 * t);
        samples[i] = static_cast<int16_t>(26000 * (tone * std::exp(-t * 12) + 0.2 * click));
    }
    const uint32_t bytes = seconds * sampleRate * 2;
    const uint32_t header[] = { 0x46464952, 36 + bytes, 0x45564157, 0x20746d66, 16, 0x00010001,
        sampleRate, sampleRate * 2, 0x00100002, 0x61746164, bytes };
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(header), sizeof header);
    file.write(reinterpret_cast<const char*>(samples.data()), bytes);
}

void WriteScript(const char* path)
{
    std::ofstream(path)
        << "<PXV Version=\"1.0\">\r\n"
           "<Component GUID=\"36267E6D-70E1-435e-9E2A-428EEA2D3C7E\" Name=\"Flush\">"
           "<Properties><Color>0x000000</Color></Properties></Component>\r\n"
           "<Component GUID=\"36267E6D-70E1-435e-9E2A-428EEA2D3C7E\" Name=\"Flush\">"
           "<Properties><OnEquation>on=impact</OnEquation><Color>0xFFFFFF</Color></Properties>"
           "</Component>\r\n</PXV>\r\n";
}

struct Events
{
    std::mutex lock;
    std::vector<double> times; // of a kick's or a flash's beginning, in s

    // Kicks come a second apart; what follows one at once belongs to it.
    void Note(double time)
    {
        const std::lock_guard guard(lock);
        if (times.empty() || time - times.back() > 0.5)
            times.push_back(time);
    }
};

std::atomic<bool> g_isOver = false;

void Hear(Events& kicks)
{
    FILE* pipe = popen("exec parec -d @DEFAULT_MONITOR@ --latency-msec=2 --process-time-msec=2"
                       " --format=s16le --rate=44100 --channels=1 --raw",
        "r");
    int16_t samples[256];
    ssize_t bytes = 0;
    while (!g_isOver && pipe && (bytes = read(fileno(pipe), samples, sizeof samples)) > 0) {
        const double end = Now();
        const ssize_t count = bytes / 2;
        for (ssize_t i = 0; i < count; ++i)
            if (std::abs(samples[i]) > 1500) {
                kicks.Note(end - static_cast<double>(count - i) / sampleRate);
                break;
            }
    }
    if (pipe)
        pclose(pipe);
}

void See(Events& flashes, int16_t x, int16_t y)
{
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection)) {
        std::fputs("measure_sync: no display\n", stderr);
        return;
    }
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    bool wasWhite = true;
    while (!g_isOver) {
        const auto cookie
            = xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, root, x, y, 1, 1, ~0u);
        xcb_get_image_reply_t* reply = xcb_get_image_reply(connection, cookie, nullptr);
        const bool isWhite = reply && xcb_get_image_data(reply)[1] > 0x80;
        free(reply);
        if (isWhite && !wasWhite)
            flashes.Note(Now());
        wasWhite = isWhite;
        std::this_thread::sleep_for(std::chrono::microseconds(500));
    }
    xcb_disconnect(connection);
}

void Compare(const Events& kicks, const Events& flashes)
{
    std::vector<double> late;
    for (const double kick : kicks.times) {
        const auto nearest = std::min_element(flashes.times.begin(), flashes.times.end(),
            [&](double a, double b) { return std::abs(a - kick) < std::abs(b - kick); });
        const double milliseconds
            = nearest == flashes.times.end() ? 1e9 : (*nearest - kick) * 1000.0;
        if (std::abs(milliseconds) < 500)
            late.push_back(milliseconds);
        std::printf("%s%.1f", late.size() > 1 ? " " : "", milliseconds);
    }
    std::sort(late.begin(), late.end());
    std::printf("\n%zu kicks, %zu flashes, %zu matched", kicks.times.size(), flashes.times.size(),
        late.size());
    if (!late.empty())
        std::printf(": the flash comes later by %.1f ms (least), %.1f (median), %.1f (most)",
            late.front(), late[late.size() / 2], late.back());
    std::puts("");
}

}

int main(int argc, char** argv)
{
    const std::string_view command = argc > 2 ? argv[1] : "";
    if (command == "kicks") {
        WriteKicks(argv[2]);
    } else if (command == "script") {
        WriteScript(argv[2]);
    } else if (command == "watch" && argc > 3) {
        Events kicks;
        Events flashes;
        std::thread ear([&] { Hear(kicks); });
        std::thread eye([&] {
            See(flashes, static_cast<int16_t>(std::atoi(argv[2])),
                static_cast<int16_t>(std::atoi(argv[3])));
        });
        std::this_thread::sleep_for(std::chrono::seconds(argc > 4 ? std::atoi(argv[4]) : 20));
        g_isOver = true;
        eye.join();
        ear.join();
        Compare(kicks, flashes);
    } else {
        std::fputs("usage: measure_sync kicks FILE | script FILE | watch X Y [SECONDS]\n", stderr);
        return 2;
    }
    return 0;
}
