#include "host/analysis/LiveAnalysis.h"
#include "host/analysis/SampleSource.h"

#include <doctest/doctest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace pxvis::host;

TEST_CASE("A streaming thread, one that draws and one that flushes do not disturb each other")
{
    constexpr int64_t Second = 1'000'000'000;
    LiveAnalysis live(1000);
    std::atomic<int64_t> heard = 0;
    std::atomic<bool> isOver = false;
    std::thread streaming([&] {
        const std::vector<float> block(2 * 441, 0.25f);
        for (int64_t time = 0; time < 30 * Second; time += Second / 100) {
            live.Push(block.data(), block.size() / 2, time);
            heard = time - Second / 10;
        }
        isOver = true;
    });
    std::thread flushing([&] {
        while (!isOver) {
            live.Flush();
            live.AnnounceSong();
            std::this_thread::yield();
        }
    });
    int wrong = 0;
    while (!isOver) {
        AudioRecord record;
        live.Take(heard, record);
        // Silence before a break, the constant behind it, nothing else.
        const int newest = record.block.waveform[0][1023];
        wrong += newest != 0 && newest != 32;
    }
    streaming.join();
    flushing.join();
    CHECK(wrong == 0);
}
