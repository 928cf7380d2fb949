#include "TestFolder.h"
#include "apps/pxvis/ScriptSet.h"
#include "apps/pxvis/VisualSession.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

std::atomic<int64_t> g_allocations { 0 };

void* Allocate(size_t size, size_t alignment)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    const size_t rounded = (std::max<size_t>(size, 1) + alignment - 1) / alignment * alignment;
    if (void* memory = std::aligned_alloc(alignment, rounded))
        return memory;
    throw std::bad_alloc();
}

}

// The linker leads the engine's own calls of malloc and realloc here (--wrap).
extern "C" {
void* __real_malloc(size_t size); // NOLINT(bugprone-reserved-identifier)
void* __real_realloc(void* memory, size_t size); // NOLINT(bugprone-reserved-identifier)

void* __wrap_malloc(size_t size) // NOLINT(bugprone-reserved-identifier)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    return __real_malloc(size);
}

void* __wrap_realloc(void* memory, size_t size) // NOLINT(bugprone-reserved-identifier)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    return __real_realloc(memory, size);
}
}

void* operator new(size_t size)
{
    return Allocate(size, alignof(std::max_align_t));
}

void* operator new(size_t size, std::align_val_t alignment)
{
    return Allocate(size, static_cast<size_t>(alignment));
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::align_val_t) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, size_t, std::align_val_t) noexcept
{
    std::free(memory);
}

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
