#include "TestFolder.h"
#include "apps/pxvis/ScriptSet.h"
#include "apps/pxvis/VisualSession.h"

#include <doctest/doctest.h>

#include <atomic>
#include <cstdint>
#include <new>

namespace {

std::atomic<int64_t> g_allocations { 0 };

void* Counted(void* memory)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    return memory;
}

}

// The linker leads the engine's own calls here (--wrap): malloc, realloc and the forms of operator
// new, under their names in the library.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void* __real_malloc(size_t size);
void* __real_realloc(void* memory, size_t size);
void* __real__Znwm(size_t size);
void* __real__ZnwmSt11align_val_t(size_t size, std::align_val_t alignment);

void* __wrap_malloc(size_t size)
{
    return Counted(__real_malloc(size));
}

void* __wrap_realloc(void* memory, size_t size)
{
    return Counted(__real_realloc(memory, size));
}

void* __wrap__Znwm(size_t size)
{
    return Counted(__real__Znwm(size));
}

void* __wrap__ZnwmSt11align_val_t(size_t size, std::align_val_t alignment)
{
    return Counted(__real__ZnwmSt11align_val_t(size, alignment));
}
}

// NOLINTEND(bugprone-reserved-identifier)

TEST_CASE("A frame of a shipped script allocates nothing once it runs")
{
    std::string error;
    const std::vector<std::string> scripts = pxvis::FindScripts("", error);
    REQUIRE(scripts.size() > 20);
    for (const std::string& script : scripts) {
        INFO(script);
        // What a text tells of the song is asked of the host afresh in each frame.
        if (BytesOf(script).find("Name=\"Text\"") != std::string::npos)
            continue;
        const auto session = pxvis::VisualSession::Create(
            { .width = 320, .height = 200, .stepRate = {}, .threads = 2 }, error);
        REQUIRE(session);
        REQUIRE(session->LoadScript(script, error));
        pxvis::host::AudioRecord record;
        record.level = 120;
        int framesThatAllocate = 0;
        for (int frame = 0; frame < 150; ++frame) {
            record.beat = frame % 30 == 0;
            const int64_t before = g_allocations.load();
            session->Step(record);
            if (frame >= 90 && g_allocations.load() != before)
                ++framesThatAllocate;
        }
        // A picture of a list, a text or a map changes now and then.
        CHECK(framesThatAllocate <= 2);
    }
}
